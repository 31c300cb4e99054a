#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

#include "foundation/Scheduler.h"

namespace orlet::test {

// A real-time main queue run by whoever calls pumpUntil() (the test's or the driver's main
// thread); async() may be called from any thread.
class LoopScheduler final : public Scheduler {
 public:
  using Clock = std::chrono::steady_clock;

  Seconds now() const override { return Clock::now() - start_; }

  void async(std::function<void()> work) override {
    {
      std::lock_guard lock(mutex_);
      queue_.push_back(std::move(work));
    }
    wake_.notify_one();
  }

  WorkItem after(Seconds delay, std::function<void()> work) override {
    auto item = WorkItem::make();
    std::lock_guard lock(mutex_);
    timers_.push_back({Clock::now() + std::chrono::duration_cast<Clock::duration>(delay),
                       Clock::duration::zero(), std::move(work), item});
    return item;
  }

  WorkItem every(Seconds interval, std::function<void()> work) override {
    auto item = WorkItem::make();
    const auto period = std::chrono::duration_cast<Clock::duration>(interval);
    std::lock_guard lock(mutex_);
    timers_.push_back({Clock::now() + period, period, std::move(work), item});
    return item;
  }

  // Runs queued and due work until `done()` holds or `timeout` passes; returns done().
  bool pumpUntil(const std::function<bool()>& done, Seconds timeout) {
    const auto limit = Clock::now() + std::chrono::duration_cast<Clock::duration>(timeout);
    while (!done()) {
      if (!runOne(limit)) return done();
    }
    return true;
  }

 private:
  struct Timer {
    Clock::time_point due;
    Clock::duration period;
    std::function<void()> work;
    WorkItem item;
  };

  // Runs one piece of work, waiting for it until `limit`; false when none came.
  bool runOne(Clock::time_point limit) {
    std::unique_lock lock(mutex_);
    while (true) {
      std::erase_if(timers_, [](const Timer& t) { return t.item.isCancelled(); });
      if (!queue_.empty()) {
        auto work = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        work();
        return true;
      }
      auto next = std::min_element(timers_.begin(), timers_.end(),
                                   [](const Timer& a, const Timer& b) { return a.due < b.due; });
      const auto now = Clock::now();
      if (next != timers_.end() && next->due <= now) {
        auto work = next->work;
        if (next->period > Clock::duration::zero()) {
          next->due += next->period;
        } else {
          timers_.erase(next);
        }
        lock.unlock();
        work();
        return true;
      }
      if (now >= limit) return false;
      const auto wakeAt = next != timers_.end() ? std::min(limit, next->due) : limit;
      wake_.wait_until(lock, wakeAt);
    }
  }

  const Clock::time_point start_ = Clock::now();
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> queue_;
  std::vector<Timer> timers_;
};

}  // namespace orlet::test
