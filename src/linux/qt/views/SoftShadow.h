#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>

namespace orlet::linux_qt {

// The soft shadow of a rounded rectangle of `size`, blurred over `radius` pixels, with no
// offset: an image `radius` larger than the rectangle on every side, to be drawn with its
// top-left corner at the rectangle's top-left minus `radius`.
QImage softShadow(QSizeF size, qreal cornerRadius, int radius, const QColor& color);

// The same for any shape: the soft shadow of `shape`'s opaque pixels, `radius` larger on every
// side, drawn with its top-left corner at the shape's top-left minus `radius`.
QImage softShadow(const QImage& shape, int radius, const QColor& color);

}  // namespace orlet::linux_qt
