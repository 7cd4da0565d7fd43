#pragma once

// Qt first: moc trips over <concepts> when the core headers come before it.
#include <QColor>
#include <QPushButton>

#include "core/CaptionCue.h"
#include "core/CaptionStyle.h"

#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSlider;
class QVBoxLayout;

namespace cuewright {

class AppModel;

// The value rules behind the inspector's controls.
namespace InspectorValues {
    inline constexpr double minimumFontSize = 24.0;
    inline constexpr double maximumFontSize = 120.0;
    inline constexpr double minimumBottomMargin = 0.02;
    inline constexpr double maximumBottomMargin = 0.25;

    double storedFontSize(double typed);
    // The field shows percent; the style keeps a fraction.
    double storedBottomMargin(double typedPercent);

    struct Range {
        double lower = 0;
        double upper = 0;
        double clamped(double value) const;
    };
    Range startRange(const CaptionCue& cue);
    Range endRange(const CaptionCue& cue, double duration);

    bool canShiftAll(double captionShift);

    QColor color(const RGBAColor& rgba);
    // sRGB components with alpha; an invalid colour is stored as white.
    RGBAColor rgbaColor(const QColor& color);
}

// A colour well: a swatch button that opens the colour dialog with opacity.
class ColorWell : public QPushButton {
    Q_OBJECT

public:
    explicit ColorWell(const QString& title, QWidget* parent = nullptr);
    void setColor(const QColor& color);
    QColor color() const { return m_color; }

signals:
    void colorPicked(const QColor& color);

private:
    void choose();

    QString m_title;
    QColor m_color;
};

// The right pane: the selected caption's issues, text, times and commands, the sync of all
// captions and the document's style. Every edit goes straight to the model. The window puts
// it in a vertically scrolling container.
class InspectorView : public QWidget {
    Q_OBJECT

public:
    explicit InspectorView(AppModel& model, QWidget* parent = nullptr);

    double captionShift() const { return m_captionShift; }

private:
    void build();
    void refresh();
    void refreshSelected();
    void refreshStyle();
    void writeStart(double value);
    void writeEnd(double value);
    void submitTime(QLineEdit* field, bool isStart);
    void submitShift();

    AppModel& m_model;
    bool m_refreshing = false;
    double m_captionShift = 0;
    std::optional<Uuid> m_shownCueID;

    QWidget* m_selectedSection = nullptr;
    QWidget* m_noSelection = nullptr;
    QWidget* m_issueBox = nullptr;
    QVBoxLayout* m_issueList = nullptr;
    QPushButton* m_fixOverlaps = nullptr;
    QPlainTextEdit* m_textEditor = nullptr;
    QLineEdit* m_startField = nullptr;
    QLineEdit* m_endField = nullptr;
    QPushButton* m_mergeButton = nullptr;
    QPushButton* m_resetPosition = nullptr;
    QWidget* m_syncSection = nullptr;
    QLineEdit* m_shiftField = nullptr;
    QPushButton* m_shiftAll = nullptr;
    QPushButton* m_alignSelected = nullptr;
    QLineEdit* m_fontSizeField = nullptr;
    QSlider* m_fontSizeSlider = nullptr;
    ColorWell* m_textColor = nullptr;
    QCheckBox* m_background = nullptr;
    QWidget* m_backgroundColorRow = nullptr;
    ColorWell* m_backgroundColor = nullptr;
    QCheckBox* m_shadow = nullptr;
    QLineEdit* m_bottomMarginField = nullptr;
    QSlider* m_bottomMarginSlider = nullptr;
    QComboBox* m_formatPicker = nullptr;
};

} // namespace cuewright
