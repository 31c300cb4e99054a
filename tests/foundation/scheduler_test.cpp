#include <gtest/gtest.h>

#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

// Deferred work never outlives whoever scheduled it: a cancelled item never runs, and a scoped
// one is cancelled when its owner goes away or schedules a replacement.
TEST(WorkItem, CancelledOrReplacedWorkNeverRuns) {
  test::VirtualScheduler s;
  std::vector<std::string> ran;
  s.after(Seconds{1}, [&] { ran.push_back("cancelled"); }).cancel();
  const auto ticks = s.every(Seconds{5}, [&] { ran.push_back("tick"); });
  {
    ScopedWorkItem owned = s.after(Seconds{0.2}, [&] { ran.push_back("owner gone"); });
  }
  ScopedWorkItem replaced = s.after(Seconds{0.2}, [&] { ran.push_back("replaced"); });
  replaced = s.after(Seconds{0.2}, [&] { ran.push_back("replacement"); });
  s.advance(Seconds{10});
  ticks.cancel();
  s.advance(Seconds{60});
  EXPECT_EQ(ran, (std::vector<std::string>{"replacement", "tick", "tick"}));
}

}  // namespace
}  // namespace orlet
