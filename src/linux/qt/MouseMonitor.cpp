#include "linux/qt/MouseMonitor.h"

#include <QMouseEvent>
#include <QWindow>
#include <utility>

#include "linux/qt/NativeCoordinates.h"

namespace orlet::linux_qt {
namespace {

std::optional<MouseEventType> typeOf(const QMouseEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:  // Qt's name for the second press of a double click
      if (event.button() == Qt::LeftButton) return MouseEventType::leftDown;
      if (event.button() == Qt::RightButton) return MouseEventType::rightDown;
      return MouseEventType::otherDown;
    case QEvent::MouseMove:
      if (event.buttons() & Qt::LeftButton) return MouseEventType::leftDragged;
      return std::nullopt;
    case QEvent::MouseButtonRelease:
      if (event.button() == Qt::LeftButton) return MouseEventType::leftUp;
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace

MouseMonitor::MouseMonitor(QWindow& window) : window_(window) {
  window_.installEventFilter(this);
}

Subscription MouseMonitor::add(Monitor monitor) {
  return monitors_.add(
      [monitor = std::move(monitor)](const MouseEvent& event, EventDisposition& disposition) {
        if (disposition == EventDisposition::pass) disposition = monitor(event);
      });
}

std::optional<MouseEvent> MouseMonitor::translate(const QMouseEvent& event) const {
  const auto type = typeOf(event);
  if (!type) return std::nullopt;
  const QPointF local = event.position() * window_.devicePixelRatio();
  return MouseEvent{*type, {local.x(), local.y()}, toNative(event.globalPosition())};
}

// Qt ends a move it handed to the window manager with a made-up release, delivered to whichever
// window the pointer is over then; a panel's drags and releases only count after its own press.
bool MouseMonitor::followsOwnPress(MouseEventType type) {
  switch (type) {
    case MouseEventType::leftDown:
      leftPressed_ = true;
      return true;
    case MouseEventType::leftDragged:
      return leftPressed_;
    case MouseEventType::leftUp:
      return std::exchange(leftPressed_, false);
    default:
      return true;
  }
}

bool MouseMonitor::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &window_ || monitors_.empty()) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
      break;
    default:
      return false;
  }
  const auto mouse = translate(static_cast<const QMouseEvent&>(*event));
  if (!mouse || !followsOwnPress(mouse->type)) return false;
  auto disposition = EventDisposition::pass;
  monitors_.call(*mouse, disposition);
  return disposition == EventDisposition::swallow;
}

}  // namespace orlet::linux_qt
