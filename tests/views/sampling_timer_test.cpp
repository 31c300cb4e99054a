#include <gtest/gtest.h>

#include "support/FakeWindowServer.h"
#include "support/VirtualScheduler.h"
#include "views/SamplingTimer.h"

namespace orlet {
namespace {

constexpr Seconds kInterval{1.0 / 60};
// Half a sample more, so that rounding in the clock cannot lose the last one.
constexpr Seconds kSlack{0.5 / 60};

class SamplingTimerTest : public ::testing::Test {
 protected:
  int samplesOver(Seconds duration) {
    const int before = samples;
    scheduler.advance(duration);
    return samples - before;
  }

  test::VirtualScheduler scheduler;
  test::FakeWindowServer server;
  int samples = 0;
  SamplingTimer timer{scheduler, server, kInterval, [this] { ++samples; }};
};

// Sixty samples a second for as long as the pointer moves and half a second after; one a second
// while it is still; and at its next input one sample at once and sixty a second again.
TEST_F(SamplingTimerTest, FollowsThePointerFromSixtyASecondToOneAndBack) {
  timer.start();
  timer.start();  // neither restarts nor doubles the sampling
  EXPECT_EQ(samplesOver(SamplingTimer::stillAfter + kSlack), 30);
  EXPECT_EQ(samplesOver(Seconds{1}), 1);

  server.movePointer({10, 10});
  scheduler.runUntilIdle();
  EXPECT_EQ(samples, 32);  // the input itself brings a sample, before any timer fires
  for (int i = 0; i < 30; ++i) {
    server.movePointer({10.0 + i, 10});
    EXPECT_EQ(samplesOver(kInterval), 1) << i;
  }
  server.setPressedButtons(1);  // a button is input as well
  EXPECT_EQ(samplesOver(SamplingTimer::stillAfter - kSlack), 29);
  EXPECT_EQ(samplesOver(Seconds{1}), 1);

  timer.stop();
  server.movePointer({0, 0});
  EXPECT_EQ(samplesOver(Seconds{1}), 0);
  EXPECT_FALSE(timer.isRunning());
}

// A window server that cannot tell input from stillness: sixty samples a second throughout.
TEST_F(SamplingTimerTest, KeepsTheFullRateWhenInputCannotBeTold) {
  server.reportsInput = false;
  timer.start();
  EXPECT_EQ(samplesOver(Seconds{2} + kSlack), 120);
}

}  // namespace
}  // namespace orlet
