#pragma once

#include <QPointF>
#include <QRect>

#include "foundation/Geometry.h"

class QScreen;

namespace orlet::linux_qt {

// Qt's logical coordinates and the ports' device pixels (X root-window coordinates). Qt keeps
// each screen's top-left corner where X has it and scales the rest of the screen by its device
// pixel ratio, so the conversion depends on the screen a point is on.
Point toNative(QPointF logical);
QPointF toLogical(Point native);

// A window's geometry: origin converted on its screen, size scaled by the screen's ratio.
Rect toNative(const QRect& logical);
QRect toLogical(const Rect& native);

}  // namespace orlet::linux_qt
