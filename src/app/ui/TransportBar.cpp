#include "app/ui/TransportBar.h"

#include "app/model/AppModel.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/TimeText.h"
#include "app/ui/ViewStyle.h"
#include "core/CaptionNavigation.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include <algorithm>

namespace cuewright {

namespace {

    constexpr int iconFrameWidth = 18;
    constexpr double backStepSeconds = 1.0;

} // namespace

double TransportBar::zoomedIn(double zoom)
{
    return std::min(zoom * zoomStep, maximumZoom);
}

double TransportBar::zoomedOut(double zoom)
{
    return std::max(zoom / zoomStep, minimumZoom);
}

QToolButton* TransportBar::iconButton(const QString& symbol, const QString& toolTip, const QString& name)
{
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setAutoRaise(true);
    button->setIcon(symbolIcon(symbol));
    button->setIconSize(QSize(16, 16));
    button->setMinimumWidth(iconFrameWidth + 8);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

TransportBar::TransportBar(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("transportBar"));
    setFixedHeight(44);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 0, 16, 0);
    row->setSpacing(12);

    m_previous = iconButton(QStringLiteral("backward.end.fill"), tr("Previous caption (Command-Up Arrow)"),
        QStringLiteral("previousCaptionButton"));
    m_play = iconButton(QStringLiteral("play.fill"), tr("Play or pause (Space)"), QStringLiteral("playPauseButton"));
    m_next = iconButton(QStringLiteral("forward.end.fill"), tr("Next caption (Command-Down Arrow)"),
        QStringLiteral("nextCaptionButton"));
    m_back = iconButton(QStringLiteral("gobackward.1"), tr("Back one second"), QStringLiteral("backOneSecondButton"));

    m_time = new QLabel(this);
    m_time->setObjectName(QStringLiteral("transportTime"));
    m_time->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    ViewStyle::setSecondary(m_time);

    m_split = iconButton(QStringLiteral("scissors"), QString(), QStringLiteral("splitButton"));
    m_split->setText(tr("Split"));
    m_split->setAccessibleName(tr("Split"));
    m_split->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_add = iconButton(QStringLiteral("plus.bubble"), QString(), QStringLiteral("transportAddCaptionButton"));
    m_add->setText(tr("Add Caption"));
    m_add->setAccessibleName(tr("Add Caption"));
    m_add->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);

    m_zoomOut = iconButton(QStringLiteral("minus.magnifyingglass"), tr("Zoom out"), QStringLiteral("zoomOutButton"));
    m_zoomIn = iconButton(QStringLiteral("plus.magnifyingglass"), tr("Zoom in"), QStringLiteral("zoomInButton"));

    for (QWidget* widget : { static_cast<QWidget*>(m_previous), static_cast<QWidget*>(m_play),
             static_cast<QWidget*>(m_next), static_cast<QWidget*>(m_back), static_cast<QWidget*>(m_time),
             static_cast<QWidget*>(m_split), static_cast<QWidget*>(m_add) })
        row->addWidget(widget, 0, Qt::AlignVCenter);
    row->addWidget(ViewStyle::verticalDivider(18, this), 0, Qt::AlignVCenter);
    row->addWidget(m_zoomOut, 0, Qt::AlignVCenter);
    row->addWidget(m_zoomIn, 0, Qt::AlignVCenter);
    row->addStretch(1);

    connect(m_previous, &QToolButton::clicked, &m_model,
        [this] { m_model.selectAdjacentCue(CaptionNavigation::Direction::previous); });
    connect(m_play, &QToolButton::clicked, &m_model, [this] { m_model.togglePlayback(); });
    connect(m_next, &QToolButton::clicked, &m_model,
        [this] { m_model.selectAdjacentCue(CaptionNavigation::Direction::next); });
    connect(m_back, &QToolButton::clicked, &m_model,
        [this] { m_model.seek(std::max(m_model.playhead() - backStepSeconds, 0.0)); });
    connect(m_split, &QToolButton::clicked, &m_model, [this] { m_model.splitSelectedCue(); });
    connect(m_add, &QToolButton::clicked, &m_model, [this] { m_model.addCue(); });
    connect(m_zoomOut, &QToolButton::clicked, this, [this] { emit zoomRequested(zoomedOut(m_zoom)); });
    connect(m_zoomIn, &QToolButton::clicked, this, [this] { emit zoomRequested(zoomedIn(m_zoom)); });

    observe(
        m_model, this,
        [this] {
            const bool hasCues = !m_model.document().cues.empty();
            m_previous->setEnabled(hasCues);
            m_next->setEnabled(hasCues);
        },
        &AppModel::documentChanged);
    observe(
        m_model, this,
        [this] {
            m_play->setIcon(
                symbolIcon(m_model.isPlaying() ? QStringLiteral("pause.fill") : QStringLiteral("play.fill")));
        },
        &AppModel::isPlayingChanged);
    observe(
        m_model, this,
        [this] { m_time->setText(clock(m_model.playhead()) + QStringLiteral(" / ") + clock(m_model.duration())); },
        &AppModel::playheadChanged, &AppModel::durationChanged);
    observe(
        m_model, this, [this] { m_split->setEnabled(m_model.selectedCue().has_value()); },
        &AppModel::selectedCueIDChanged, &AppModel::documentChanged);
    observe(
        m_model, this, [this] { m_add->setEnabled(!m_model.videoURL().isEmpty()); }, &AppModel::videoURLChanged);
}

} // namespace cuewright
