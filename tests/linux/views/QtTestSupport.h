#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QThread>
#include <QWidget>
#include <QWindow>

#include "Session.h"

namespace orlet::test {

// Runs the toolkit's events until `done` holds or `timeout` passed; returns `done()`.
inline bool processEventsUntil(const std::function<bool()>& done,
                               std::chrono::milliseconds timeout = std::chrono::seconds(5)) {
  return x11test::eventually(done, timeout, [] {
    QApplication::processEvents(QEventLoop::AllEvents, 20);
    QThread::msleep(5);
  });
}

inline void processPendingEvents() {
  processEventsUntil([] { return false; }, std::chrono::milliseconds(50));
}

// A left click at `pos` in `widget`, delivered to its window as the window system delivers it,
// so that the window picks the widget under the point.
inline void click(QWidget* widget, QPoint pos) {
  QWindow* window = widget->window()->windowHandle();
  const QPointF local = widget->mapTo(widget->window(), QPointF(pos));
  const QPointF global = widget->mapToGlobal(QPointF(pos));
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, local, local, global, Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(window, &event);
  }
}

}  // namespace orlet::test
