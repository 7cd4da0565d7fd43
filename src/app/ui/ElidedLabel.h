#pragma once

#include <QLabel>

namespace cuewright {

// A label that stays on one line and ends with an ellipsis when its text does not fit,
// instead of widening its parent.
class ElidedLabel final : public QLabel {
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setFullText(const QString& text);
    QString fullText() const { return m_fullText; }
    void setElideMode(Qt::TextElideMode mode) { m_elideMode = mode; }

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateElision();

    QString m_fullText;
    Qt::TextElideMode m_elideMode = Qt::ElideMiddle;
};

} // namespace cuewright
