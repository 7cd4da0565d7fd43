#include "app/ui/CaptionListView.h"

#include "app/model/AppModel.h"
#include "app/ui/CaptionListModel.h"
#include "app/ui/CaptionRowDelegate.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/ViewStyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace cuewright {

namespace {

    // Rows react to a press at once, as a tap does, and the list keeps no selection of its own:
    // the model's selection is the only one.
    class CaptionRowsView final : public QListView {
    public:
        using QListView::QListView;
        std::function<void(int row)> rowPressed;
        void setPadding(int padding) { setViewportMargins(padding, padding, padding, padding); }

    protected:
        void mousePressEvent(QMouseEvent* event) override
        {
            if (event->button() == Qt::LeftButton) {
                const QModelIndex index = indexAt(event->position().toPoint());
                if (index.isValid() && rowPressed) {
                    rowPressed(index.row());
                    event->accept();
                    return;
                }
            }
            QListView::mousePressEvent(event);
        }
    };

} // namespace

CaptionListView::CaptionListView(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_rows(new CaptionListModel(this))
{
    setObjectName(QStringLiteral("captionList"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());
    layout->addWidget(ViewStyle::horizontalDivider(this));

    auto* rows = new CaptionRowsView(this);
    rows->rowPressed = [this](int row) { activateRow(row); };
    rows->setPadding(7); // with the spacing, 10 around the column
    m_list = rows;
    m_list->setObjectName(QStringLiteral("captionRows"));
    m_list->setModel(m_rows);
    m_list->setItemDelegate(new CaptionRowDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setMouseTracking(true);
    m_list->setSpacing(3); // 6 between rows
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->viewport()->setAutoFillBackground(false);

    m_stack = new QStackedWidget(this);
    m_stack->addWidget(makeEmptyState());
    m_stack->addWidget(m_list);
    layout->addWidget(m_stack, 1);

    observe(
        m_model, this, [this] { refreshDocument(); }, &AppModel::documentChanged);
    observe(
        m_model, this, [this] { m_rows->setSelectedCueID(m_model.selectedCueID()); }, &AppModel::selectedCueIDChanged);
    observe(
        m_model, this, [this] { refreshActiveCue(); }, &AppModel::playheadChanged, &AppModel::documentChanged);
    observe(
        m_model, this, [this] { refreshEmptyState(); }, &AppModel::videoURLChanged, &AppModel::isWorkingChanged,
        &AppModel::documentChanged);
    observe(
        m_model, this, [this] { m_addButton->setEnabled(!m_model.videoURL().isEmpty()); }, &AppModel::videoURLChanged);
}

QWidget* CaptionListView::makeHeader()
{
    auto* header = new QWidget(this);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(16, 16, 16, 16);
    row->setSpacing(8);

    auto* icon = new QLabel(header);
    icon->setPixmap(symbolIcon(QStringLiteral("captions.bubble")).pixmap(16, 16));
    auto* title = new QLabel(tr("Captions"), header);
    title->setFont(ViewStyle::headlineFont());
    row->addWidget(icon);
    row->addWidget(title);
    row->addStretch(1);

    m_issueButton = new QToolButton(header);
    m_issueButton->setObjectName(QStringLiteral("issueCountButton"));
    m_issueButton->setAutoRaise(true);
    m_issueButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_issueButton->setIcon(
        tintedSymbolIcon(QStringLiteral("exclamationmark.triangle.fill"), ViewStyle::warningOrange()));
    m_issueButton->setToolTip(tr("Select the next caption issue"));
    m_issueButton->setFocusPolicy(Qt::TabFocus);
    QPalette orange = m_issueButton->palette();
    orange.setColor(QPalette::ButtonText, ViewStyle::warningOrange());
    m_issueButton->setPalette(orange);
    connect(m_issueButton, &QToolButton::clicked, &m_model, [this] { m_model.selectNextQualityIssue(); });
    row->addWidget(m_issueButton);

    m_addButton = new QToolButton(header);
    m_addButton->setObjectName(QStringLiteral("listAddCaptionButton"));
    m_addButton->setAutoRaise(true);
    m_addButton->setIcon(symbolIcon(QStringLiteral("plus")));
    m_addButton->setToolTip(tr("Add caption at the playhead"));
    m_addButton->setFocusPolicy(Qt::TabFocus);
    connect(m_addButton, &QToolButton::clicked, &m_model, [this] { m_model.addCue(); });
    row->addWidget(m_addButton);
    return header;
}

QWidget* CaptionListView::makeEmptyState()
{
    auto* page = new QWidget(this);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(20, 28, 20, 0);
    column->setSpacing(10);

    auto* icon = new QLabel(page);
    // Dimmed rather than recoloured: theme icons are drawn in several colours.
    const QPixmap pixmap = symbolIcon(QStringLiteral("captions.bubble")).pixmap(28, 28, QIcon::Disabled);
    icon->setPixmap(pixmap);
    icon->setAlignment(Qt::AlignHCenter);
    auto* title = new QLabel(tr("No captions yet"), page);
    title->setFont(ViewStyle::headlineFont());
    title->setAlignment(Qt::AlignHCenter);
    m_emptyMessage = new QLabel(page);
    m_emptyMessage->setObjectName(QStringLiteral("emptyListMessage"));
    m_emptyMessage->setFont(ViewStyle::calloutFont());
    m_emptyMessage->setAlignment(Qt::AlignHCenter);
    m_emptyMessage->setWordWrap(true);
    ViewStyle::setSecondary(m_emptyMessage);
    m_emptyTranscribe = new QPushButton(tr("Transcribe"), page);
    m_emptyTranscribe->setObjectName(QStringLiteral("emptyTranscribeButton"));
    m_emptyTranscribe->setFocusPolicy(Qt::TabFocus);
    connect(m_emptyTranscribe, &QPushButton::clicked, &m_model, [this] { m_model.transcribe(); });

    column->addWidget(icon);
    column->addWidget(title);
    column->addWidget(m_emptyMessage);
    column->addWidget(m_emptyTranscribe, 0, Qt::AlignHCenter);
    column->addStretch(1);
    return page;
}

void CaptionListView::refreshDocument()
{
    QScrollBar* scroll = m_list->verticalScrollBar();
    const int scrollValue = scroll->value();
    m_rows->setDocument(m_model.document());
    scroll->setValue(scrollValue);

    // The rows already ran the quality rules; the count of distinct cues is the same number.
    const int count = m_rows->issueCueCount();
    m_issueButton->setVisible(count > 0);
    m_issueButton->setText(QString::number(count));
    m_issueButton->setAccessibleName(tr("%1 captions need attention").arg(count));
    m_stack->setCurrentIndex(m_model.document().cues.empty() ? 0 : 1);
}

void CaptionListView::refreshActiveCue()
{
    const auto cue = m_model.document().cueAt(m_model.playhead());
    m_rows->setActiveCueID(cue ? std::optional<Uuid>(cue->id) : std::nullopt);
}

void CaptionListView::refreshEmptyState()
{
    const bool hasVideo = !m_model.videoURL().isEmpty();
    m_emptyMessage->setText(hasVideo ? tr("Transcribe, import or add one manually.") : tr("Add a video to begin."));
    m_emptyTranscribe->setVisible(hasVideo);
    m_emptyTranscribe->setEnabled(!m_model.isWorking());
}

void CaptionListView::activateRow(int row)
{
    const auto id = m_rows->cueIDAt(row);
    if (!id)
        return;
    const double start = m_rows->document().cues[static_cast<std::size_t>(row)].start;
    m_model.setSelectedCueID(*id);
    m_model.seek(start);
}

} // namespace cuewright
