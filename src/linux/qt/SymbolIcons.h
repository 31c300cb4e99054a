#pragma once

#include <QColor>
#include <QPixmap>
#include <string>

namespace orlet::linux_qt {

// A symbol of the ports ("arrow.left", "pin.fill", "pin.slash",
// "wifi.slash") as a picture tinted in one
// colour, the way the platform draws template symbols: from the icon theme when it has the
// matching freedesktop icon, else from the SVG bundled with the program. Null when the symbol
// is unknown.
QPixmap symbolPixmap(const std::string& symbol, const QColor& tint, int logicalSize,
                     qreal devicePixelRatio);

}  // namespace orlet::linux_qt
