#include "linux/qt/QtScheduler.h"

#include <QMetaObject>
#include <QPointer>
#include <QTimer>
#include <cmath>

namespace orlet::linux_qt {
namespace {

int toMilliseconds(Seconds s) {
  const double ms = std::ceil(s.count() * 1000.0);
  return static_cast<int>(std::clamp(ms, 0.0, 2.0e9));
}

}  // namespace

QtScheduler::QtScheduler() {
  clock_.start();
}
QtScheduler::~QtScheduler() = default;

Seconds QtScheduler::now() const {
  return Seconds{static_cast<double>(clock_.nsecsElapsed()) * 1e-9};
}

void QtScheduler::async(std::function<void()> work) {
  // Thread-safe: a queued invocation posts an event to the context's thread.
  QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
}

WorkItem QtScheduler::after(Seconds delay, std::function<void()> work) {
  auto item = WorkItem::make();
  auto* timer = new QTimer(&context_);
  timer->setSingleShot(true);
  // Sub-second delays (0.05 s placements, 1/60 s sampling) need better than the coarse timer.
  timer->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer, &QTimer::timeout, &context_, [timer, item, work = std::move(work)] {
    timer->deleteLater();
    if (!item.isCancelled()) work();
  });
  QPointer<QTimer> guard(timer);
  item.setOnCancel([guard] {
    if (guard) guard->deleteLater();
  });
  timer->start(toMilliseconds(delay));
  return item;
}

WorkItem QtScheduler::every(Seconds interval, std::function<void()> work) {
  auto item = WorkItem::make();
  auto* timer = new QTimer(&context_);
  // Sampling at 1/60 s needs the precise timer; slower work (a still pointer's samples, the
  // display list's refresh) may share its wake-ups with others, within 5 % of its interval.
  timer->setTimerType(interval < Seconds{0.2} ? Qt::PreciseTimer : Qt::CoarseTimer);
  QObject::connect(timer, &QTimer::timeout, &context_, [item, work = std::move(work)] {
    if (!item.isCancelled()) work();
  });
  QPointer<QTimer> guard(timer);
  item.setOnCancel([guard] {
    if (guard) guard->deleteLater();
  });
  timer->start(std::max(1, toMilliseconds(interval)));
  return item;
}

}  // namespace orlet::linux_qt
