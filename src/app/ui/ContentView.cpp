#include "app/ui/ContentView.h"

#include "app/model/AppModel.h"
#include "app/ui/CaptionListView.h"
#include "app/ui/ContentPanes.h"
#include "app/ui/HeaderView.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/StatusBarView.h"
#include "app/ui/TransportBar.h"
#include "app/ui/ViewStyle.h"

#include <QAction>
#include <QScrollArea>
#include <QSplitter>
#include <QVBoxLayout>

namespace cuewright {

namespace {

    constexpr int listMinimumWidth = 240;
    constexpr int listIdealWidth = 280;
    constexpr int listMaximumWidth = 330;
    constexpr int centreMinimumWidth = 520;
    constexpr int inspectorMinimumWidth = 300;
    constexpr int inspectorMaximumWidth = 410;
    constexpr int timelineHeight = 82;

} // namespace

ContentView::ContentView(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_header(new HeaderView(model, this))
{
    setObjectName(QStringLiteral("contentView"));
    setMinimumSize(minimumContentWidth, minimumContentHeight);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);

    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    stack->addWidget(m_header);
    stack->addWidget(ViewStyle::horizontalDivider(this));

    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setObjectName(QStringLiteral("paneSplitter"));
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);

    m_captionList = new CaptionListView(model, m_splitter);
    m_captionList->setMinimumWidth(listMinimumWidth);
    m_captionList->setMaximumWidth(listMaximumWidth);
    m_splitter->addWidget(m_captionList);
    m_splitter->addWidget(makeCentreColumn());
    m_splitter->addWidget(makeInspectorScroll());
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setStretchFactor(2, 0);
    stack->addWidget(m_splitter, 1);

    stack->addWidget(ViewStyle::horizontalDivider(this));
    m_statusBar = new StatusBarView(model, this);
    stack->addWidget(m_statusBar);

    connect(m_transport, &TransportBar::zoomRequested, this, &ContentView::setTimelineZoom);
    installBareKeys();
}

QWidget* ContentView::makeCentreColumn()
{
    auto* centre = new QWidget(m_splitter);
    centre->setObjectName(QStringLiteral("centreColumn"));
    centre->setMinimumWidth(centreMinimumWidth);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);

    m_preview = makePreviewPane(m_model, *this);
    m_preview->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    column->addWidget(m_preview, 1);
    column->addWidget(ViewStyle::horizontalDivider(centre));
    m_transport = new TransportBar(m_model, centre);
    column->addWidget(m_transport);
    column->addWidget(ViewStyle::horizontalDivider(centre));
    m_timeline = makeTimelinePane(m_model, *this);
    m_timeline->setFixedHeight(timelineHeight);
    column->addWidget(m_timeline);
    return centre;
}

QScrollArea* ContentView::makeInspectorScroll()
{
    auto* scroll = new QScrollArea(m_splitter);
    scroll->setObjectName(QStringLiteral("inspectorScroll"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded); // only when dragged narrower than the controls
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scroll->setMinimumWidth(inspectorMinimumWidth);
    scroll->setMaximumWidth(inspectorMaximumWidth);
    m_inspector = makeInspectorPane(m_model, *this);
    scroll->setWidget(m_inspector);
    return scroll;
}

void ContentView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_sizedPanes)
        return;
    m_sizedPanes = true;
    // Fonts here run wider than the ideal width was drawn for, and the selected caption's
    // button rows need about the maximum: open the inspector that wide.
    const int inspector = inspectorMaximumWidth;
    const int centre = qMax(centreMinimumWidth, width() - listIdealWidth - inspector - 2);
    m_splitter->setSizes({ listIdealWidth, centre, inspector });
}

void ContentView::setTimelineZoom(double zoom)
{
    if (zoom == m_timelineZoom)
        return;
    m_timelineZoom = zoom;
    m_transport->setTimelineZoom(zoom);
    emit timelineZoomChanged(zoom);
}

void ContentView::installBareKeys()
{
    // Window-wide shortcuts: Qt offers a key to a focused text control first (the shortcut
    // override), so fields type a space or delete a character as usual.
    m_spaceKey = new QAction(tr("Play or Pause"), this);
    m_spaceKey->setObjectName(QStringLiteral("playbackKey"));
    m_spaceKey->setShortcut(QKeySequence(Qt::Key_Space));
    m_spaceKey->setShortcutContext(Qt::WindowShortcut);
    connect(m_spaceKey, &QAction::triggered, &m_model, [this] { m_model.togglePlayback(); });
    addAction(m_spaceKey);

    // A disabled shortcut is no shortcut: with nothing selected the key passes on.
    m_deleteKey = new QAction(tr("Delete Caption"), this);
    m_deleteKey->setObjectName(QStringLiteral("deleteKey"));
    m_deleteKey->setShortcuts({ QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::Key_Delete) });
    m_deleteKey->setShortcutContext(Qt::WindowShortcut);
    connect(m_deleteKey, &QAction::triggered, &m_model, [this] { m_model.removeSelectedCue(); });
    addAction(m_deleteKey);
    observe(
        m_model, this, [this] { m_deleteKey->setEnabled(m_model.selectedCueID().has_value()); },
        &AppModel::selectedCueIDChanged);
}

} // namespace cuewright
