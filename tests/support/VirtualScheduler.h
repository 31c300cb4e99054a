#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
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
  WorkItem after(Seconds delay, std::function<void()> work) override;
  WorkItem every(Seconds interval, std::function<void()> work) override;

  // Runs everything due up to now + `duration`, then leaves the clock there.
  void advance(Seconds duration);
  // Runs the work due now, including what that work queues for now (async hops).
  void runUntilIdle() { advance(Seconds{0}); }
  // Scheduled items not yet run or cancelled.
  std::size_t pendingCount() const;

 private:
  struct Entry {
    Seconds due;
    std::uint64_t sequence;
    std::function<void()> work;
    WorkItem item;
    Seconds interval;  // > 0 for repeating work
  };
  void drainInbox();
  bool popNextDue(Seconds limit, Entry& out);

  Seconds now_{0};
  std::uint64_t nextSequence_ = 0;
  std::vector<Entry> entries_;
  mutable std::mutex inboxMutex_;
  std::vector<std::function<void()>> inbox_;  // async() from other threads
};

}  // namespace orlet::test
