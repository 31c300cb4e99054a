#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "foundation/Scheduler.h"

namespace orlet::test {

// Deterministic main queue: nothing runs until the test advances the clock. Work due at the same
// instant runs in the order it was scheduled; work scheduled while advancing runs in the same
// advance if it falls due before the target time.
class VirtualScheduler final : public Scheduler {
 public:
  Seconds now() const override { return now_; }
  void async(std::function<void()> work) override;
  WorkItem after(Seconds delay, std::function<void()> work) override {
    return add(now_ + std::max(delay, Seconds{0}), Seconds{0}, std::move(work));
  }
  WorkItem every(Seconds interval, std::function<void()> work) override {
    return add(now_ + interval, interval, std::move(work));
  }

  // Runs everything due up to now + `duration`, then leaves the clock there.
  void advance(Seconds duration);
  // Runs the work due now, including what that work queues for now (async hops).
  void runUntilIdle() { advance(Seconds{0}); }

 private:
  struct Entry {
    std::function<void()> work;
    WorkItem item;
    Seconds interval;  // > 0 for repeating work
  };
  WorkItem add(Seconds due, Seconds interval, std::function<void()> work,
               WorkItem item = WorkItem::make());
  // Queues what async() received from any thread, due now.
  void drainInbox();

  Seconds now_{0};
  std::uint64_t sequence_ = 0;
  std::map<std::pair<Seconds, std::uint64_t>, Entry> entries_;  // by due time, then sequence
  std::mutex inboxMutex_;
  std::vector<std::function<void()>> inbox_;
};

}  // namespace orlet::test
