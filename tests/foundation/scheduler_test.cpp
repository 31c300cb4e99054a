#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

using test::VirtualScheduler;

TEST(VirtualScheduler, RunsWorkInDueOrderAndFifoWithinAnInstant) {
  VirtualScheduler s;
  std::vector<std::string> log;
  s.after(Seconds{0.2}, [&] { log.push_back("0.2"); });
  s.async([&] { log.push_back("async-1"); });
  s.after(Seconds{0.05}, [&] {
    log.push_back("0.05");
    // A hop queued from inside runs in the same advance, after what was already due.
    s.async([&] { log.push_back("hop"); });
  });
  s.async([&] { log.push_back("async-2"); });

  s.advance(Seconds{0.1});
  EXPECT_EQ(log, (std::vector<std::string>{"async-1", "async-2", "0.05", "hop"}));
  EXPECT_DOUBLE_EQ(s.now().count(), 0.1);
  s.advance(Seconds{0.1});
  EXPECT_EQ(log.back(), "0.2");
  EXPECT_EQ(s.pendingCount(), 0u);
}

TEST(VirtualScheduler, CancelledWorkNeverRunsAndRepeatingWorkKeepsItsCadence) {
  VirtualScheduler s;
  int once = 0;
  int ticks = 0;
  auto item = s.after(Seconds{1}, [&] { ++once; });
  auto timer = s.every(Seconds{5}, [&] { ++ticks; });
  item.cancel();
  s.advance(Seconds{14.9});
  EXPECT_EQ(once, 0);
  EXPECT_EQ(ticks, 2);
  s.advance(Seconds{0.1});
  EXPECT_EQ(ticks, 3);
  timer.cancel();
  s.advance(Seconds{60});
  EXPECT_EQ(ticks, 3);
}

TEST(VirtualScheduler, ScopedWorkItemCancelsWhenItsOwnerGoesAway) {
  VirtualScheduler s;
  int runs = 0;
  {
    ScopedWorkItem owned = s.after(Seconds{0.2}, [&] { ++runs; });
  }
  ScopedWorkItem replaced = s.after(Seconds{0.2}, [&] { runs += 10; });
  replaced = s.after(Seconds{0.2}, [&] { runs += 100; });
  s.advance(Seconds{1});
  EXPECT_EQ(runs, 100);
}

TEST(VirtualScheduler, AsyncFromAnotherThreadRunsOnTheAdvancingThread) {
  VirtualScheduler s;
  std::thread::id ranOn;
  std::thread worker([&] { s.async([&] { ranOn = std::this_thread::get_id(); }); });
  worker.join();
  s.runUntilIdle();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

}  // namespace
}  // namespace orlet
