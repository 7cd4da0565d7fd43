#pragma once

#include <QColor>
#include <QFont>
#include <QString>

class QFrame;
class QLabel;
class QWidget;

namespace cuewright::ViewStyle {

// The type ramp of the views, derived from the application font so that the desktop's
// size setting carries through.
QFont headlineFont();
QFont captionFont();
QFont calloutFont();
// Digits of equal width, for times that tick.
QFont monospacedDigitsFont(const QFont& base);

QColor secondaryTextColor(const QWidget* widget);
QColor tertiaryTextColor(const QWidget* widget);
QColor accentColor(const QWidget* widget);
inline QColor activeGreen()
{
    return QColor(52, 199, 89);
}
inline QColor warningOrange()
{
    return QColor(255, 149, 0);
}

// A one-pixel separator line between regions.
QFrame* horizontalDivider(QWidget* parent = nullptr);
QFrame* verticalDivider(int height, QWidget* parent = nullptr);

void setSecondary(QLabel* label);

} // namespace cuewright::ViewStyle
