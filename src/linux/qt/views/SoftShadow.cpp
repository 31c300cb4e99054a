#include "linux/qt/views/SoftShadow.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

namespace orlet::linux_qt {
namespace {

// One box-blur pass over the alpha channel along rows (horizontal) or columns.
void boxBlurAlpha(QImage& image, int radius, bool horizontal) {
  const int w = image.width();
  const int h = image.height();
  const int lines = horizontal ? h : w;
  const int length = horizontal ? w : h;
  std::vector<int> source(length);
  for (int line = 0; line < lines; ++line) {
    auto alphaAt = [&](int i) -> uchar& {
      const int x = horizontal ? i : line;
      const int y = horizontal ? line : i;
      return image.scanLine(y)[x * 4 + 3];
    };
    for (int i = 0; i < length; ++i) source[i] = alphaAt(i);
    int sum = 0;
    for (int i = -radius; i <= radius; ++i) sum += source[std::clamp(i, 0, length - 1)];
    for (int i = 0; i < length; ++i) {
      alphaAt(i) = static_cast<uchar>(sum / (2 * radius + 1));
      sum += source[std::min(i + radius + 1, length - 1)] - source[std::max(i - radius, 0)];
    }
  }
}

// Blurs the alpha of `image` (non-premultiplied, drawn black) and colours it.
QImage blurredAndColoured(QImage image, int radius, const QColor& color) {
  // Three box passes of a third of the radius approximate a Gaussian of that radius.
  const int pass = std::max(1, radius / 3);
  for (int i = 0; i < 3; ++i) {
    boxBlurAlpha(image, pass, true);
    boxBlurAlpha(image, pass, false);
  }
  for (int y = 0; y < image.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      line[x] =
          qRgba(color.red(), color.green(), color.blue(), qAlpha(line[x]) * color.alpha() / 255);
    }
  }
  return image;
}

}  // namespace

QImage softShadow(QSizeF size, qreal cornerRadius, int radius, const QColor& color) {
  const QSize imageSize(static_cast<int>(std::ceil(size.width())) + 2 * radius,
                        static_cast<int>(std::ceil(size.height())) + 2 * radius);
  // Alpha-only work in a non-premultiplied image, coloured at the end.
  QImage image(imageSize, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(QPointF(radius, radius), size), cornerRadius, cornerRadius);
  }
  return blurredAndColoured(std::move(image), radius, color);
}

QImage softShadow(const QImage& shape, int radius, const QColor& color) {
  QImage image(shape.size() + QSize(2 * radius, 2 * radius), QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    painter.drawImage(QPoint(radius, radius), shape);
  }
  return blurredAndColoured(std::move(image), radius, color);
}

}  // namespace orlet::linux_qt
