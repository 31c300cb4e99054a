#include "linux/qt/DrawingPainter.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace orlet::linux_qt {
namespace {

QRectF toQRect(const Rect& r) {
  return {r.x, r.y, r.width, r.height};
}

void paintCommand(QPainter& painter, const DrawingCommand& command) {
  using Kind = DrawingCommand::Kind;
  const QColor color = toQColor(command.color);
  switch (command.kind) {
    case Kind::fillEllipse: {
      QPainterPath path;
      path.addEllipse(toQRect(command.rect));
      painter.fillPath(path, color);
      break;
    }
    case Kind::fillRoundedRect: {
      QPainterPath path;
      path.addRoundedRect(toQRect(command.rect), command.cornerRadius, command.cornerRadius);
      painter.fillPath(path, color);
      break;
    }
    case Kind::fillRect:
      painter.fillRect(toQRect(command.rect), color);
      break;
    case Kind::strokeLine:
      painter.setPen(QPen(color, command.lineWidth, Qt::SolidLine, Qt::FlatCap));
      painter.drawLine(QPointF(command.from.x, command.from.y),
                       QPointF(command.to.x, command.to.y));
      break;
  }
}

}  // namespace

QColor toQColor(Color color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

void paintDrawing(QPainter& painter, const Drawing& drawing, const QRectF& target) {
  if (drawing.size.isEmpty()) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(target.topLeft());
  painter.scale(target.width() / drawing.size.width, target.height() / drawing.size.height);
  for (const auto& command : drawing.commands) paintCommand(painter, command);
  painter.restore();
}

QPixmap renderDrawing(const Drawing& drawing, QSize logicalSize, qreal devicePixelRatio) {
  QPixmap pixmap(QSize(static_cast<int>(std::ceil(logicalSize.width() * devicePixelRatio)),
                       static_cast<int>(std::ceil(logicalSize.height() * devicePixelRatio))));
  pixmap.setDevicePixelRatio(devicePixelRatio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  paintDrawing(painter, drawing, QRectF(QPointF(), QSizeF(logicalSize)));
  return pixmap;
}

}  // namespace orlet::linux_qt
