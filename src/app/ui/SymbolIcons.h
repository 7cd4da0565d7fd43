#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace cuewright {

// Icons go by the symbol names of the design ("film.badge.plus"); each maps to the nearest
// freedesktop icon of the installed theme, with one of Qt's standard icons as the fallback.
QIcon symbolIcon(const QString& symbolName);

// The same icon recoloured in one flat colour, for marks that carry meaning by colour.
QIcon tintedSymbolIcon(const QString& symbolName, const QColor& color, int size = 16);

// Chooses breeze, then Adwaita, as the icon theme where the platform names none.
void installIconTheme();

} // namespace cuewright
