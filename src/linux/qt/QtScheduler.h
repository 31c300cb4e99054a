#pragma once

#include <QElapsedTimer>
#include <QObject>

#include "foundation/Scheduler.h"

namespace orlet::linux_qt {

// The main queue as the Qt event loop of the thread that creates it (the GUI thread).
class QtScheduler final : public Scheduler {
 public:
  QtScheduler();
  ~QtScheduler() override;

  Seconds now() const override;
  void async(std::function<void()> work) override;
  WorkItem after(Seconds delay, std::function<void()> work) override;
  WorkItem every(Seconds interval, std::function<void()> work) override;

 private:
  QObject context_;  // lives on the GUI thread; queued calls and timers run in its thread
  QElapsedTimer clock_;
};

}  // namespace orlet::linux_qt
