#include "app/ui/InspectorView.h"

#include "app/model/AppModel.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/ViewStyle.h"
#include "core/CaptionFormat.h"
#include "core/CaptionQuality.h"
#include "core/CaptionTimeline.h"
#include "core/CaptionTiming.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleValidator>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QResizeEvent>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace cuewright {

namespace InspectorValues {

    double storedFontSize(double typed)
    {
        return std::min(std::max(typed, minimumFontSize), maximumFontSize);
    }

    double storedBottomMargin(double typedPercent)
    {
        return std::min(std::max(typedPercent / 100.0, minimumBottomMargin), maximumBottomMargin);
    }

    double Range::clamped(double value) const
    {
        return std::min(std::max(value, lower), upper);
    }

    Range startRange(const CaptionCue& cue)
    {
        return { 0.0, std::max(cue.end - CaptionTiming::minimumDuration, 0.0) };
    }

    Range endRange(const CaptionCue& cue, double duration)
    {
        return { std::min(cue.start + CaptionTiming::minimumDuration, duration),
            std::max(duration, cue.start + CaptionTiming::minimumDuration) };
    }

    bool canShiftAll(double captionShift)
    {
        return std::abs(captionShift) >= 0.001;
    }

    QColor color(const RGBAColor& rgba)
    {
        return QColor::fromRgbF(float(rgba.red), float(rgba.green), float(rgba.blue), float(rgba.alpha));
    }

    RGBAColor rgbaColor(const QColor& color)
    {
        if (!color.isValid())
            return RGBAColor::white();
        const QColor rgb = color.toRgb();
        return { rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF() };
    }

} // namespace InspectorValues

namespace {

    // Nested box layouts hand a word-wrapped label its one-line height; asking for the
    // wrapped height at each new width keeps long messages whole.
    class WrappingLabel : public QLabel {
    public:
        using QLabel::QLabel;

    protected:
        void resizeEvent(QResizeEvent* event) override
        {
            QLabel::resizeEvent(event);
            const int wanted = heightForWidth(width());
            if (wanted > 0 && wanted != minimumHeight())
                setMinimumHeight(wanted);
        }
    };

    namespace V = InspectorValues;

    QLabel* headline(const QString& text)
    {
        auto* label = new QLabel(text);
        QFont font = label->font();
        font.setBold(true);
        font.setPointSizeF(font.pointSizeF() * 1.1);
        label->setFont(font);
        return label;
    }

    // An icon and a label side by side.
    QWidget* iconLabel(const char* icon, QLabel* label)
    {
        auto* row = new QWidget;
        auto* layout = new QHBoxLayout(row);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(6);
        const QIcon symbol = symbolIcon(QString::fromLatin1(icon));
        if (!symbol.isNull()) {
            auto* image = new QLabel;
            image->setPixmap(symbol.pixmap(16, 16));
            image->setAlignment(Qt::AlignTop);
            layout->addWidget(image);
        }
        layout->addWidget(label, 1);
        return row;
    }

    QWidget* section(const char* icon, const QString& title)
    {
        return iconLabel(icon, headline(title));
    }

    QFrame* divider()
    {
        auto* line = new QFrame;
        line->setFrameShape(QFrame::HLine);
        line->setFrameShadow(QFrame::Sunken);
        return line;
    }

    QPushButton* button(const QString& title, const char* icon = nullptr, const QString& toolTip = {})
    {
        auto* result = new QPushButton(title);
        // The pane is narrow: the style's roomy default padding would push buttons out of it.
        result->setStyleSheet(QStringLiteral("QPushButton { padding: 3px 6px; }"));
        result->setIconSize(QSize(14, 14));
        if (icon)
            result->setIcon(symbolIcon(QString::fromLatin1(icon)));
        if (!toolTip.isEmpty())
            result->setToolTip(toolTip);
        return result;
    }

    QLineEdit* numberField(int width, const QString& objectName)
    {
        auto* field = new QLineEdit;
        field->setObjectName(objectName);
        field->setFixedWidth(width);
        field->setAlignment(Qt::AlignRight);
        QFont font = field->font();
        font.setStyleHint(QFont::Monospace);
        font.setFamily(QStringLiteral("monospace"));
        field->setFont(font);
        return field;
    }

    QString number(double value, int decimals)
    {
        return QLocale().toString(value, 'f', decimals);
    }

    std::optional<double> parsed(const QLineEdit* field)
    {
        bool ok = false;
        const double value = QLocale().toDouble(field->text().trimmed(), &ok);
        if (!ok) {
            // Also take the C form, as typed on keyboards whose locale differs.
            const double plain = field->text().trimmed().toDouble(&ok);
            if (!ok || !std::isfinite(plain))
                return std::nullopt;
            return plain;
        }
        return std::isfinite(value) ? std::optional(value) : std::nullopt;
    }

    void setFieldText(QLineEdit* field, const QString& text)
    {
        // Leave the user's typing alone until they submit it.
        if (field->hasFocus() && field->isModified())
            return;
        if (field->text() != text)
            field->setText(text);
    }

    const char* issueIcon(CaptionQualityIssueKind kind)
    {
        switch (kind) {
        case CaptionQualityIssueKind::overlap:
            return "rectangle.2.swap";
        case CaptionQualityIssueKind::tooFast:
            return "speedometer";
        case CaptionQualityIssueKind::longLine:
            return "text.alignleft";
        case CaptionQualityIssueKind::tooManyLines:
            return "text.badge.exclamationmark";
        }
        return "text.badge.exclamationmark";
    }

    QWidget* row(std::initializer_list<QWidget*> widgets, int spacing, int stretchAfter = -1)
    {
        auto* container = new QWidget;
        auto* layout = new QHBoxLayout(container);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(spacing);
        int index = 0;
        for (auto* widget : widgets) {
            layout->addWidget(widget);
            if (index++ == stretchAfter)
                layout->addStretch(1);
        }
        if (stretchAfter < 0)
            layout->addStretch(1);
        return container;
    }

} // namespace

ColorWell::ColorWell(const QString& title, QWidget* parent)
    : QPushButton(parent)
    , m_title(title)
{
    setFixedSize(44, 24);
    setToolTip(title);
    setAccessibleName(title);
    connect(this, &QPushButton::clicked, this, &ColorWell::choose);
}

void ColorWell::setColor(const QColor& color)
{
    if (color == m_color)
        return;
    m_color = color;
    // A checkerboard under the swatch shows its opacity.
    QPixmap swatch(32, 14);
    QPainter painter(&swatch);
    for (int y = 0; y < 14; y += 7)
        for (int x = 0; x < 32; x += 7)
            painter.fillRect(x, y, 7, 7, ((x + y) / 7) % 2 ? QColor(200, 200, 200) : Qt::white);
    painter.fillRect(swatch.rect(), color);
    painter.end();
    setIcon(swatch);
    setIconSize(swatch.size());
}

void ColorWell::choose()
{
    const QColor chosen = QColorDialog::getColor(m_color, this, m_title, QColorDialog::ShowAlphaChannel);
    if (!chosen.isValid())
        return; // cancelled
    setColor(chosen);
    emit colorPicked(chosen);
}

InspectorView::InspectorView(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("inspectorView"));
    build();
    for (auto signal : { &AppModel::documentChanged, &AppModel::selectedCueIDChanged, &AppModel::styleChanged,
             &AppModel::durationChanged, &AppModel::exportFormatChanged })
        connect(&m_model, signal, this, &InspectorView::refresh);
    refresh();
}

void InspectorView::build()
{
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(14, 16, 14, 16);
    stack->setSpacing(18);

    // ---- The selected caption
    m_selectedSection = new QWidget;
    auto* selected = new QVBoxLayout(m_selectedSection);
    selected->setContentsMargins(0, 0, 0, 0);
    selected->setSpacing(18);
    selected->addWidget(section("captions.bubble.fill", QStringLiteral("Selected caption")));

    m_issueBox = new QFrame;
    m_issueBox->setObjectName(QStringLiteral("issueBox"));
    m_issueBox->setStyleSheet(QStringLiteral("#issueBox { background: rgba(255, 149, 0, 26); border-radius: 9px; }"));
    auto* issues = new QVBoxLayout(m_issueBox);
    issues->setContentsMargins(11, 11, 11, 11);
    issues->setSpacing(9);
    m_issueList = new QVBoxLayout;
    m_issueList->setSpacing(9);
    issues->addLayout(m_issueList);
    m_fixOverlaps = button(QStringLiteral("Fix Overlaps"));
    m_fixOverlaps->setObjectName(QStringLiteral("fixOverlapsButton"));
    connect(m_fixOverlaps, &QPushButton::clicked, &m_model, &AppModel::removeCaptionOverlaps);
    auto* nextIssue = button(QStringLiteral("Next Issue"));
    nextIssue->setObjectName(QStringLiteral("nextIssueButton"));
    connect(nextIssue, &QPushButton::clicked, &m_model, &AppModel::selectNextQualityIssue);
    issues->addWidget(row({ m_fixOverlaps, nextIssue }, 8, 0));
    selected->addWidget(m_issueBox);

    m_textEditor = new QPlainTextEdit;
    m_textEditor->setObjectName(QStringLiteral("captionTextEditor"));
    m_textEditor->setAccessibleName(QStringLiteral("Caption text"));
    m_textEditor->setMinimumHeight(90);
    m_textEditor->setFixedHeight(96);
    QFont editorFont = m_textEditor->font();
    editorFont.setPointSizeF(editorFont.pointSizeF() * 1.25);
    m_textEditor->setFont(editorFont);
    m_textEditor->setStyleSheet(QStringLiteral(
        "QPlainTextEdit { background: palette(alternate-base); border-radius: 8px; padding: 6px; border: none; }"));
    connect(m_textEditor, &QPlainTextEdit::textChanged, this, [this] {
        if (m_refreshing)
            return;
        const std::string text = m_textEditor->toPlainText().toStdString();
        m_model.updateSelected([&](CaptionCue& cue) { cue.text = text; });
    });
    selected->addWidget(m_textEditor);

    const auto timeField = [this](const QString& title, QLineEdit*& field, const QString& name, bool isStart) {
        auto* box = new QWidget;
        auto* layout = new QVBoxLayout(box);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(4);
        auto* label = new QLabel(title);
        QFont small = label->font();
        small.setPointSizeF(small.pointSizeF() * 0.9);
        label->setFont(small);
        label->setForegroundRole(QPalette::PlaceholderText);
        field = new QLineEdit;
        field->setObjectName(name);
        field->setAccessibleName(title);
        layout->addWidget(label);
        layout->addWidget(field);
        QLineEdit* target = field;
        connect(field, &QLineEdit::editingFinished, this, [this, target, isStart] { submitTime(target, isStart); });
        return box;
    };
    auto* times = new QWidget;
    auto* timesLayout = new QHBoxLayout(times);
    timesLayout->setContentsMargins(0, 0, 0, 0);
    timesLayout->addWidget(timeField(QStringLiteral("Start"), m_startField, QStringLiteral("startField"), true));
    timesLayout->addWidget(timeField(QStringLiteral("End"), m_endField, QStringLiteral("endField"), false));
    selected->addWidget(times);

    auto* setStart = button(QStringLiteral("Set Start"), "inset.filled.leadingthird",
        QStringLiteral("Set caption start to playhead (Option-[)"));
    connect(setStart, &QPushButton::clicked, &m_model, &AppModel::setSelectedCueStartToPlayhead);
    auto* setEnd = button(QStringLiteral("Set End"), "inset.filled.trailingthird",
        QStringLiteral("Set caption end to playhead (Option-])"));
    connect(setEnd, &QPushButton::clicked, &m_model, &AppModel::setSelectedCueEndToPlayhead);
    const QString nudgeTip = QStringLiteral("Move caption by 0.10 seconds (Option-Left/Right)");
    auto* nudgeLeft = button({}, "chevron.left", nudgeTip);
    nudgeLeft->setAccessibleName(QStringLiteral("Nudge Left"));
    connect(nudgeLeft, &QPushButton::clicked, this, [this] { m_model.nudgeSelectedCue(-0.1); });
    auto* nudgeRight = button({}, "chevron.right", nudgeTip);
    nudgeRight->setAccessibleName(QStringLiteral("Nudge Right"));
    connect(nudgeRight, &QPushButton::clicked, this, [this] { m_model.nudgeSelectedCue(0.1); });
    selected->addWidget(row({ setStart, setEnd, nudgeLeft, nudgeRight }, 8, 1));

    auto* split = button(QStringLiteral("Split at Playhead"), "scissors");
    connect(split, &QPushButton::clicked, &m_model, &AppModel::splitSelectedCue);
    m_mergeButton = button(QStringLiteral("Merge with Next"), "arrow.triangle.merge",
        QStringLiteral("Join this caption with the next one (Shift-Command-M)"));
    m_mergeButton->setObjectName(QStringLiteral("mergeButton"));
    connect(m_mergeButton, &QPushButton::clicked, &m_model, &AppModel::mergeSelectedCueWithNext);
    auto* remove = button(QStringLiteral("Remove"), "trash");
    remove->setStyleSheet(QStringLiteral("QPushButton { color: #d70015; }"));
    connect(remove, &QPushButton::clicked, &m_model, &AppModel::removeSelectedCue);
    selected->addWidget(row({ split, m_mergeButton, remove }, 8, 1));

    m_resetPosition = button(QStringLiteral("Reset Position"), "arrow.uturn.backward");
    m_resetPosition->setObjectName(QStringLiteral("resetPositionButton"));
    connect(m_resetPosition, &QPushButton::clicked, &m_model, &AppModel::resetSelectedCuePosition);
    auto* resetRow = row({ m_resetPosition }, 8);
    selected->addWidget(resetRow);
    selected->addWidget(divider());
    stack->addWidget(m_selectedSection);

    m_noSelection = new QWidget;
    auto* placeholder = new QVBoxLayout(m_noSelection);
    placeholder->setContentsMargins(0, 12, 0, 12);
    auto* placeholderIcon = new QLabel;
    placeholderIcon->setPixmap(symbolIcon(QString::fromLatin1("captions.bubble")).pixmap(32, 32));
    placeholderIcon->setAlignment(Qt::AlignHCenter);
    auto* placeholderTitle = new QLabel(QStringLiteral("<b>No caption selected</b>"));
    placeholderTitle->setAlignment(Qt::AlignHCenter);
    auto* placeholderText = new QLabel(QStringLiteral("Select a caption in the list or timeline."));
    placeholderText->setAlignment(Qt::AlignHCenter);
    placeholderText->setForegroundRole(QPalette::PlaceholderText);
    placeholderText->setWordWrap(true);
    placeholder->addWidget(placeholderIcon);
    placeholder->addWidget(placeholderTitle);
    placeholder->addWidget(placeholderText);
    stack->addWidget(m_noSelection);

    // ---- Sync
    m_syncSection = new QWidget;
    auto* sync = new QVBoxLayout(m_syncSection);
    sync->setContentsMargins(0, 0, 0, 0);
    sync->setSpacing(12);
    sync->addWidget(section("arrow.left.and.right", QStringLiteral("Sync captions")));
    auto* syncText
        = new QLabel(QStringLiteral("Move every caption together while preserving their timing and spacing."));
    syncText->setWordWrap(true);
    syncText->setForegroundRole(QPalette::PlaceholderText);
    sync->addWidget(syncText);
    auto* offsetLabel = new QLabel(QStringLiteral("Offset"));
    m_shiftField = numberField(80, QStringLiteral("captionShiftField"));
    m_shiftField->setAccessibleName(QStringLiteral("Caption time offset in seconds"));
    m_shiftField->setText(number(0, 2));
    connect(m_shiftField, &QLineEdit::textEdited, this, [this] {
        m_captionShift = parsed(m_shiftField).value_or(0.0);
        m_shiftAll->setEnabled(V::canShiftAll(m_captionShift));
    });
    connect(m_shiftField, &QLineEdit::editingFinished, this, &InspectorView::submitShift);
    auto* seconds = new QLabel(QStringLiteral("s"));
    seconds->setForegroundRole(QPalette::PlaceholderText);
    m_shiftAll = button(QStringLiteral("Shift All"));
    m_shiftAll->setObjectName(QStringLiteral("shiftAllButton"));
    m_shiftAll->setEnabled(false);
    connect(m_shiftAll, &QPushButton::clicked, this, [this] {
        m_model.shiftAllCaptions(m_captionShift);
        m_captionShift = 0.0;
        m_shiftField->setText(number(0, 2));
        m_shiftAll->setEnabled(false);
    });
    sync->addWidget(row({ offsetLabel, m_shiftField, seconds, m_shiftAll }, 8));
    m_alignSelected = button(QStringLiteral("Align Selected Start to Playhead"), "arrow.right.to.line",
        QStringLiteral("Move all captions so the selected caption begins at the current playhead"));
    m_alignSelected->setObjectName(QStringLiteral("alignSelectedButton"));
    connect(m_alignSelected, &QPushButton::clicked, this, [this] {
        if (const auto cue = m_model.selectedCue())
            m_model.shiftAllCaptions(m_model.playhead() - cue->start);
    });
    sync->addWidget(row({ m_alignSelected }, 8));
    sync->addWidget(divider());
    stack->addWidget(m_syncSection);

    // ---- Style
    auto* styleSection = new QWidget;
    auto* style = new QVBoxLayout(styleSection);
    style->setContentsMargins(0, 0, 0, 0);
    style->setSpacing(14);
    style->addWidget(section("paintbrush", QStringLiteral("Caption style")));

    // The field and the slider show one value; a typed value is limited by the write, not the field.
    const auto sliderFieldRow
        = [this](const QString& title, int lower, int upper, const QString& unit, const QString& name,
              QLineEdit*& field, QSlider*& slider, std::function<void(double)> write) {
              auto* box = new QWidget;
              auto* layout = new QVBoxLayout(box);
              layout->setContentsMargins(0, 0, 0, 0);
              layout->setSpacing(7);
              field = numberField(58, name + QStringLiteral("Field"));
              field->setAccessibleName(title);
              auto* unitLabel = new QLabel(unit);
              unitLabel->setFixedWidth(22);
              unitLabel->setForegroundRole(QPalette::PlaceholderText);
              layout->addWidget(row({ new QLabel(title), field, unitLabel }, 6, 0));
              slider = new QSlider(Qt::Horizontal);
              slider->setObjectName(name + QStringLiteral("Slider"));
              slider->setAccessibleName(title);
              slider->setRange(lower, upper);
              slider->setSingleStep(1);
              layout->addWidget(slider);
              QLineEdit* target = field;
              connect(field, &QLineEdit::editingFinished, this, [this, target, write] {
                  if (const auto value = parsed(target))
                      write(*value);
                  target->setModified(false);
                  refreshStyle();
              });
              connect(slider, &QSlider::valueChanged, this, [this, write](int value) {
                  if (!m_refreshing)
                      write(value);
              });
              return box;
          };
    style->addWidget(sliderFieldRow(QStringLiteral("Font size"), 24, 120, QStringLiteral("pt"),
        QStringLiteral("fontSize"), m_fontSizeField, m_fontSizeSlider, [this](double value) {
            m_model.updateStyle(
                QStringLiteral("style-fontSize"), [&](CaptionStyle& s) { s.fontSize = V::storedFontSize(value); });
        }));

    m_textColor = new ColorWell(QStringLiteral("Text"));
    m_textColor->setObjectName(QStringLiteral("textColorWell"));
    connect(m_textColor, &ColorWell::colorPicked, this, [this](const QColor& color) {
        m_model.updateStyle(
            QStringLiteral("style-textColor"), [&](CaptionStyle& s) { s.textColor = V::rgbaColor(color); });
    });
    style->addWidget(row({ new QLabel(QStringLiteral("Text")), m_textColor }, 8, 0));

    m_background = new QCheckBox(QStringLiteral("Background"));
    m_background->setObjectName(QStringLiteral("backgroundToggle"));
    connect(m_background, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_refreshing)
            m_model.updateStyle(
                QStringLiteral("style-backgroundEnabled"), [&](CaptionStyle& s) { s.backgroundEnabled = on; });
    });
    style->addWidget(m_background);
    m_backgroundColor = new ColorWell(QStringLiteral("Background color"));
    m_backgroundColor->setObjectName(QStringLiteral("backgroundColorWell"));
    connect(m_backgroundColor, &ColorWell::colorPicked, this, [this](const QColor& color) {
        m_model.updateStyle(
            QStringLiteral("style-backgroundColor"), [&](CaptionStyle& s) { s.backgroundColor = V::rgbaColor(color); });
    });
    m_backgroundColorRow = row({ new QLabel(QStringLiteral("Background color")), m_backgroundColor }, 8, 0);
    style->addWidget(m_backgroundColorRow);

    m_shadow = new QCheckBox(QStringLiteral("Shadow"));
    m_shadow->setObjectName(QStringLiteral("shadowToggle"));
    connect(m_shadow, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_refreshing)
            m_model.updateStyle(QStringLiteral("style-shadowEnabled"), [&](CaptionStyle& s) { s.shadowEnabled = on; });
    });
    style->addWidget(m_shadow);

    style->addWidget(sliderFieldRow(QStringLiteral("Bottom margin"), 2, 25, QStringLiteral("%"),
        QStringLiteral("bottomMargin"), m_bottomMarginField, m_bottomMarginSlider, [this](double value) {
            m_model.updateStyle(QStringLiteral("style-bottomMargin"),
                [&](CaptionStyle& s) { s.bottomMargin = V::storedBottomMargin(value); });
        }));
    style->addWidget(divider());

    m_formatPicker = new QComboBox;
    m_formatPicker->setObjectName(QStringLiteral("captionFormatPicker"));
    m_formatPicker->setAccessibleName(QStringLiteral("Caption file"));
    for (const auto format : allCaptionFormats)
        m_formatPicker->addItem(QString::fromUtf8(rawValue(format).data(), qsizetype(rawValue(format).size())));
    connect(m_formatPicker, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (!m_refreshing && index >= 0 && index < int(allCaptionFormats.size()))
            m_model.setExportFormat(allCaptionFormats[std::size_t(index)]);
    });
    style->addWidget(row({ new QLabel(QStringLiteral("Caption file")), m_formatPicker }, 8, 0));
    stack->addWidget(styleSection);
    stack->addStretch(1);
}

void InspectorView::refresh()
{
    m_refreshing = true;
    refreshSelected();
    m_syncSection->setVisible(!m_model.document().cues.empty());
    m_alignSelected->setEnabled(m_model.selectedCue().has_value());
    refreshStyle();
    const auto format = m_model.exportFormat();
    for (std::size_t i = 0; i < allCaptionFormats.size(); ++i)
        if (allCaptionFormats[i] == format)
            m_formatPicker->setCurrentIndex(int(i));
    m_refreshing = false;
}

void InspectorView::refreshSelected()
{
    const auto cue = m_model.selectedCue();
    m_selectedSection->setVisible(cue.has_value());
    m_noSelection->setVisible(!cue.has_value());
    if (!cue) {
        m_shownCueID.reset();
        return;
    }

    const auto issues = m_model.selectedCueIssues();
    m_issueBox->setVisible(!issues.empty());
    while (auto* item = m_issueList->takeAt(0)) {
        if (auto* line = item->layout())
            while (auto* part = line->takeAt(0)) {
                delete part->widget();
                delete part;
            }
        delete item->widget();
        delete item;
    }
    bool hasOverlap = false;
    for (const auto& issue : issues) {
        hasOverlap = hasOverlap || issue.kind == CaptionQualityIssueKind::overlap;
        // A nested layout rather than a row widget, so the wrapped text gets its full height.
        auto* line = new QHBoxLayout;
        line->setSpacing(6);
        auto* image = new QLabel;
        image->setPixmap(
            tintedSymbolIcon(QString::fromLatin1(issueIcon(issue.kind)), ViewStyle::warningOrange()).pixmap(16, 16));
        image->setAlignment(Qt::AlignTop);
        auto* label = new WrappingLabel(QString::fromStdString(issue.message));
        label->setWordWrap(true);
        label->setStyleSheet(QStringLiteral("color: #c93400;"));
        line->addWidget(image);
        line->addWidget(label, 1);
        m_issueList->addLayout(line);
    }
    m_fixOverlaps->setVisible(hasOverlap);

    const QString text = QString::fromStdString(cue->text);
    // Rewriting the editor while the user types in it would throw the cursor away.
    if (m_shownCueID != cue->id || (!m_textEditor->hasFocus() && m_textEditor->toPlainText() != text)) {
        if (m_textEditor->toPlainText() != text)
            m_textEditor->setPlainText(text);
    }
    if (m_shownCueID != cue->id) {
        m_startField->setModified(false);
        m_endField->setModified(false);
    }
    m_shownCueID = cue->id;
    setFieldText(m_startField, number(cue->start, 2));
    setFieldText(m_endField, number(cue->end, 2));
    m_mergeButton->setEnabled(m_model.canMergeSelectedCueWithNext());
    const bool placed = cue->positionX.has_value() || cue->positionY.has_value();
    m_resetPosition->setVisible(placed);
    m_resetPosition->parentWidget()->setVisible(placed);
}

void InspectorView::refreshStyle()
{
    const bool wasRefreshing = m_refreshing;
    m_refreshing = true;
    const auto& style = m_model.style();
    setFieldText(m_fontSizeField, number(style.fontSize, 0));
    m_fontSizeSlider->setValue(int(std::lround(style.fontSize)));
    setFieldText(m_bottomMarginField, number(style.bottomMargin * 100.0, 0));
    m_bottomMarginSlider->setValue(int(std::lround(style.bottomMargin * 100.0)));
    m_textColor->setColor(V::color(style.textColor));
    m_background->setChecked(style.backgroundEnabled);
    m_backgroundColorRow->setVisible(style.backgroundEnabled);
    m_backgroundColor->setColor(V::color(style.backgroundColor));
    m_shadow->setChecked(style.shadowEnabled);
    m_refreshing = wasRefreshing;
}

void InspectorView::writeStart(double value)
{
    const auto cue = m_model.selectedCue();
    if (!cue)
        return;
    const double start
        = CaptionTimeline::trimmedStart(*cue, value, m_model.document().cues, CaptionTimeline::defaultSnapTolerance);
    m_model.setCueTiming(cue->id, start, cue->end);
}

void InspectorView::writeEnd(double value)
{
    const auto cue = m_model.selectedCue();
    if (!cue)
        return;
    const double end = CaptionTimeline::trimmedEnd(
        *cue, value, m_model.document().cues, m_model.duration(), CaptionTimeline::defaultSnapTolerance);
    m_model.setCueTiming(cue->id, cue->start, end);
}

void InspectorView::submitTime(QLineEdit* field, bool isStart)
{
    const auto cue = m_model.selectedCue();
    const auto value = parsed(field);
    field->setModified(false);
    if (cue && value) {
        const auto range = isStart ? V::startRange(*cue) : V::endRange(*cue, m_model.duration());
        if (isStart) {
            writeStart(*value);
            writeStart(range.clamped(*value));
        } else {
            writeEnd(*value);
            writeEnd(range.clamped(*value));
        }
    }
    // Shows what the model kept, also after a refused or unreadable value.
    if (const auto current = m_model.selectedCue())
        field->setText(number(isStart ? current->start : current->end, 2));
}

void InspectorView::submitShift()
{
    m_captionShift = parsed(m_shiftField).value_or(0.0);
    m_shiftField->setText(number(m_captionShift, 2));
    m_shiftField->setModified(false);
    m_shiftAll->setEnabled(V::canShiftAll(m_captionShift));
}

} // namespace cuewright
