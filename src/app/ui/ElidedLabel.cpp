#include "app/ui/ElidedLabel.h"

#include <QFontMetrics>

namespace cuewright {

ElidedLabel::ElidedLabel(QWidget* parent)
    : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setTextFormat(Qt::PlainText);
    setWordWrap(false);
}

void ElidedLabel::setFullText(const QString& text)
{
    if (text == m_fullText && !this->text().isEmpty())
        return;
    m_fullText = text;
    setToolTip(text);
    updateGeometry();
    updateElision();
}

QSize ElidedLabel::minimumSizeHint() const
{
    return { 0, fontMetrics().height() };
}

QSize ElidedLabel::sizeHint() const
{
    return { fontMetrics().horizontalAdvance(m_fullText), fontMetrics().height() };
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    updateElision();
}

void ElidedLabel::updateElision()
{
    QString single = m_fullText;
    single.replace(QLatin1Char('\n'), QLatin1Char(' '));
    setText(fontMetrics().elidedText(single, m_elideMode, qMax(0, width())));
}

} // namespace cuewright
