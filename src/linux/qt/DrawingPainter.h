#pragma once

#include <QPixmap>
#include <QRectF>

#include "platform/Drawing.h"

class QPainter;

namespace orlet::linux_qt {

QColor toQColor(Color color);

// Paints `drawing` scaled from its own size into `target`, antialiased.
void paintDrawing(QPainter& painter, const Drawing& drawing, const QRectF& target);

// `drawing` at `logicalSize`, rendered for a screen of `devicePixelRatio`.
QPixmap renderDrawing(const Drawing& drawing, QSize logicalSize, qreal devicePixelRatio);

}  // namespace orlet::linux_qt
