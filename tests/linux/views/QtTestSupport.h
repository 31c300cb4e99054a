#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QThread>
#include <QWidget>
#include <QWindow>
#include <functional>

namespace orlet::test {

// Runs the toolkit's events until `done` holds or `timeoutMs` passed; returns `done()`.
inline bool processEventsUntil(const std::function<bool()>& done, int timeoutMs = 5000) {
  QElapsedTimer clock;
  clock.start();
  while (!done()) {
    if (clock.elapsed() > timeoutMs) return false;
    QApplication::processEvents(QEventLoop::AllEvents, 20);
    QThread::msleep(5);
  }
  return true;
}

inline void processPendingEvents() {
  processEventsUntil([] { return false; }, 50);
}

// A left click at `pos` in `widget`, delivered to its window as the window system delivers it,
// so that the window picks the widget under the point.
inline void click(QWidget* widget, QPoint pos) {
  QWindow* window = widget->window()->windowHandle();
  const QPointF local = widget->mapTo(widget->window(), QPointF(pos));
  const QPointF global = widget->mapToGlobal(QPointF(pos));
  QMouseEvent press(QEvent::MouseButtonPress, local, local, global, Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  QApplication::sendEvent(window, &press);
  QMouseEvent release(QEvent::MouseButtonRelease, local, local, global, Qt::LeftButton,
                      Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(window, &release);
}

}  // namespace orlet::test
