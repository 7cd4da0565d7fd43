#include "app/ui/ViewStyle.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFrame>
#include <QLabel>
#include <QPalette>

namespace cuewright::ViewStyle {

namespace {

    QFont scaled(double factor, bool bold)
    {
        QFont font = QApplication::font();
        if (font.pointSizeF() > 0)
            font.setPointSizeF(font.pointSizeF() * factor);
        else
            font.setPixelSize(qMax(1, qRound(font.pixelSize() * factor)));
        font.setBold(bold);
        return font;
    }

} // namespace

QFont headlineFont()
{
    return scaled(1.0, true);
}

QFont captionFont()
{
    return scaled(0.85, false);
}

QFont calloutFont()
{
    return scaled(0.93, false);
}

QFont monospacedDigitsFont(const QFont& base)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (base.pointSizeF() > 0)
        font.setPointSizeF(base.pointSizeF());
    else
        font.setPixelSize(base.pixelSize());
    font.setBold(base.bold());
    return font;
}

QColor secondaryTextColor(const QWidget* widget)
{
    QColor color = widget ? widget->palette().color(QPalette::WindowText) : QColor(Qt::black);
    color.setAlphaF(0.62f);
    return color;
}

QColor tertiaryTextColor(const QWidget* widget)
{
    QColor color = widget ? widget->palette().color(QPalette::WindowText) : QColor(Qt::black);
    color.setAlphaF(0.35f);
    return color;
}

QColor accentColor(const QWidget* widget)
{
    return widget ? widget->palette().color(QPalette::Highlight) : QColor(0, 122, 255);
}

QFrame* horizontalDivider(QWidget* parent)
{
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setFixedHeight(1);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

QFrame* verticalDivider(int height, QWidget* parent)
{
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::VLine);
    line->setFrameShadow(QFrame::Plain);
    line->setFixedSize(1, height);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

void setSecondary(QLabel* label)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, secondaryTextColor(label));
    label->setPalette(palette);
}

} // namespace cuewright::ViewStyle
