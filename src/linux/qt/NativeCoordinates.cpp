#include "linux/qt/NativeCoordinates.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace orlet::linux_qt {
namespace {

QScreen* screenAtLogical(QPointF p) {
  if (auto* screen = QGuiApplication::screenAt(p.toPoint())) return screen;
  return QGuiApplication::primaryScreen();
}

QScreen* screenAtNative(Point p) {
  for (auto* screen : QGuiApplication::screens()) {
    const QRectF logical = screen->geometry();
    const double ratio = screen->devicePixelRatio();
    const Rect native{logical.x(), logical.y(), logical.width() * ratio, logical.height() * ratio};
    if (native.contains(p)) return screen;
  }
  return QGuiApplication::primaryScreen();
}

double ratioOf(const QScreen* screen) {
  return screen ? screen->devicePixelRatio() : 1.0;
}

QPointF originOf(const QScreen* screen) {
  return screen ? QPointF(screen->geometry().topLeft()) : QPointF();
}

}  // namespace

Point toNative(QPointF logical) {
  const auto* screen = screenAtLogical(logical);
  const QPointF origin = originOf(screen);
  const QPointF native = origin + (logical - origin) * ratioOf(screen);
  return {native.x(), native.y()};
}

QPointF toLogical(Point native) {
  const auto* screen = screenAtNative(native);
  const QPointF origin = originOf(screen);
  return origin + (QPointF(native.x, native.y) - origin) / ratioOf(screen);
}

Rect toNative(const QRect& logical) {
  const double ratio = ratioOf(screenAtLogical(logical.topLeft()));
  const Point origin = toNative(QPointF(logical.topLeft()));
  return {origin.x, origin.y, logical.width() * ratio, logical.height() * ratio};
}

QRect toLogical(const Rect& native) {
  const double ratio = ratioOf(screenAtNative(native.origin()));
  const QPointF origin = toLogical(native.origin());
  return {static_cast<int>(std::lround(origin.x())), static_cast<int>(std::lround(origin.y())),
          static_cast<int>(std::lround(native.width / ratio)),
          static_cast<int>(std::lround(native.height / ratio))};
}

}  // namespace orlet::linux_qt
