#include "app/ui/StatusBarView.h"

#include "app/model/AppModel.h"
#include "app/ui/ElidedLabel.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/ViewStyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

#include <cmath>

namespace cuewright {

namespace {

    constexpr int progressSteps = 1000;

} // namespace

StatusBarView::StatusBarView(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_progress(new QProgressBar(this))
    , m_message(new ElidedLabel(this))
    , m_localOnly(new QLabel(tr("Local only"), this))
{
    setObjectName(QStringLiteral("statusBar"));
    setFixedHeight(28);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(14, 0, 14, 0);
    row->setSpacing(10);

    m_progress->setObjectName(QStringLiteral("workProgress"));
    m_progress->setRange(0, progressSteps);
    m_progress->setTextVisible(false);
    m_progress->setFixedSize(120, 8);
    m_message->setObjectName(QStringLiteral("statusMessage"));
    m_message->setFont(ViewStyle::captionFont());
    m_message->setElideMode(Qt::ElideRight);
    ViewStyle::setSecondary(m_message);
    m_localOnly->setObjectName(QStringLiteral("localOnlyLabel"));
    m_localOnly->setFont(ViewStyle::captionFont());
    ViewStyle::setSecondary(m_localOnly);

    row->addWidget(m_progress, 0, Qt::AlignVCenter);
    row->addWidget(m_message, 1, Qt::AlignVCenter);
    row->addWidget(m_localOnly, 0, Qt::AlignVCenter);

    observe(
        m_model, this, [this] { m_progress->setVisible(m_model.isWorking()); }, &AppModel::isWorkingChanged);
    observe(
        m_model, this,
        [this] {
            const double fraction = m_model.progress();
            const double clamped = std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0.0;
            m_progress->setValue(static_cast<int>(std::lround(clamped * progressSteps)));
        },
        &AppModel::progressChanged);
    observe(
        m_model, this, [this] { m_message->setFullText(m_model.statusMessage()); }, &AppModel::statusMessageChanged);
    observe(
        m_model, this, [this] { m_localOnly->setVisible(!m_model.videoURL().isEmpty()); }, &AppModel::videoURLChanged);
}

} // namespace cuewright
