#include "capture/VideoCaptureManager.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

class VideoCaptureManagerTest : public ::testing::Test {
 protected:
  VideoCaptureManagerTest() {
    // Streams deliver only what each test sends.
    service.samples[left.displayID] = {};
    service.samples[right.displayID] = {};
  }
  test::FakeCaptureStream& stream(std::size_t i) { return *service.streams.at(i); }

  test::VirtualScheduler scheduler;
  test::FakeCaptureService service{scheduler};
  Display left = test::makeDisplay(1, 4, 3, 0, true);
  Display right = test::makeDisplay(2, 8, 6, 4);
  std::unique_ptr<VideoCaptureManager> manager =
      std::make_unique<VideoCaptureManager>(scheduler, service);
};

TEST_F(VideoCaptureManagerTest, StreamsTheWholeDisplayAtTheRequestedRate) {
  manager->startCapture(left);
  scheduler.runUntilIdle();
  EXPECT_TRUE(stream(0).isRunning());
  EXPECT_EQ(stream(0).display(), left);
  const auto& configuration = stream(0).configuration();
  EXPECT_EQ(configuration.width, 4);
  EXPECT_EQ(configuration.height, 3);

  EXPECT_EQ(VideoCaptureManager::configurationFor(left, 60).minimumFrameInterval,
            (MediaTime{1, 60}));
  EXPECT_DOUBLE_EQ(
      VideoCaptureManager::configurationFor(left, 60).minimumFrameInterval.seconds().count(),
      1.0 / 60);
}

TEST_F(VideoCaptureManagerTest, PublishesEachPictureOneTurnAfterItsSampleAndDropsEmptySamples) {
  manager->startCapture(left);
  scheduler.runUntilIdle();

  const FrameRef first = stream(0).deliver();
  FrameRef seenOneTurnLater = service.makeFrame(1, 1);
  // Queued right behind the sample: it runs after the sample was handled, before publication.
  scheduler.async([&] { seenOneTurnLater = manager->currentFrame.get(); });
  scheduler.runUntilIdle();
  EXPECT_EQ(seenOneTurnLater, nullptr);
  EXPECT_EQ(manager->currentFrame.get(), first);
  EXPECT_EQ(first->width(), 4);
  EXPECT_EQ(first->height(), 3);

  stream(0).deliver(false);
  scheduler.runUntilIdle();
  EXPECT_EQ(manager->currentFrame.get(), first);

  const FrameRef second = stream(0).deliver();
  scheduler.runUntilIdle();
  EXPECT_EQ(manager->currentFrame.get(), second);
}

TEST_F(VideoCaptureManagerTest, ASecondStartChangesNothingEvenForAnotherDisplay) {
  manager->startCapture(left);
  manager->startCapture(right, 60);
  scheduler.runUntilIdle();
  manager->startCapture(right);
  scheduler.runUntilIdle();

  ASSERT_EQ(service.streams.size(), 1u);
  EXPECT_EQ(stream(0).display(), left);
  EXPECT_EQ(stream(0).configuration().minimumFrameInterval, (MediaTime{1, 30}));
}

TEST_F(VideoCaptureManagerTest, StopReleasesTheStreamAtOnceAndClearsThePictureWhenItCompletes) {
  manager->stopCapture();  // nothing held: nothing happens
  scheduler.runUntilIdle();
  EXPECT_TRUE(service.streams.empty());

  service.stopLatency = Seconds{0.5};
  manager->startCapture(left);
  scheduler.runUntilIdle();
  const FrameRef shown = stream(0).deliver();
  scheduler.runUntilIdle();

  manager->stopCapture();
  EXPECT_FALSE(manager->isCapturing());
  EXPECT_FALSE(stream(0).isRunning());
  scheduler.advance(Seconds{0.4});
  EXPECT_EQ(manager->currentFrame.get(), shown);  // stopping: the last picture stays
  scheduler.advance(Seconds{0.1});
  EXPECT_EQ(manager->currentFrame.get(), nullptr);
}

// The old stop may complete before the new stream is even attached, or after its first picture:
// either way the new stream runs, and its picture is back without waiting for the display to
// change (a still display sends nothing more).
TEST_F(VideoCaptureManagerTest, AStopCompletingAfterTheNextStartLeavesTheNewCaptureShowing) {
  for (const double latency : {0.0, 0.5}) {
    SCOPED_TRACE(latency);
    service.stopLatency = Seconds{latency};
    manager = std::make_unique<VideoCaptureManager>(scheduler, service);
    const std::size_t first = service.streams.size();
    manager->startCapture(left);
    scheduler.runUntilIdle();

    manager->stopCapture();
    manager->startCapture(right);
    scheduler.runUntilIdle();
    ASSERT_EQ(service.streams.size(), first + 2);
    EXPECT_TRUE(stream(first + 1).isRunning());
    const FrameRef fromNew = stream(first + 1).deliver();
    scheduler.runUntilIdle();
    EXPECT_EQ(manager->currentFrame.get(), fromNew);

    std::vector<FrameRef> shown;
    const auto watch =
        manager->currentFrame.observe([&](const FrameRef& f) { shown.push_back(f); });
    scheduler.advance(Seconds{0.5});  // the old stop has completed
    EXPECT_TRUE(manager->isCapturing());
    EXPECT_EQ(manager->currentFrame.get(), fromNew);
    if (latency > 0) {
      EXPECT_EQ(shown, (std::vector<FrameRef>{nullptr, fromNew}));
    }

    const FrameRef next = stream(first + 1).deliver();
    scheduler.runUntilIdle();
    EXPECT_EQ(manager->currentFrame.get(), next);
  }
}

TEST_F(VideoCaptureManagerTest, AStopInTheSameTurnAsTheStartNeverStartsTheStream) {
  manager->startCapture(left);
  manager->stopCapture();
  scheduler.runUntilIdle();

  ASSERT_EQ(service.streams.size(), 1u);
  EXPECT_FALSE(stream(0).isRunning());
  stream(0).deliver();
  scheduler.runUntilIdle();
  EXPECT_EQ(manager->currentFrame.get(), nullptr);
}

TEST_F(VideoCaptureManagerTest, FailuresToAttachOrStartLeaveItWaitingWithoutPicture) {
  service.failures[left.displayID] = {.addOutput = true, .start = true};
  manager->startCapture(left);
  scheduler.runUntilIdle();
  EXPECT_TRUE(manager->isCapturing());
  EXPECT_FALSE(stream(0).isRunning());
  EXPECT_EQ(manager->currentFrame.get(), nullptr);

  manager->stopCapture();  // the stop's error is ignored; a new start works
  scheduler.runUntilIdle();
  service.failures.clear();
  manager->startCapture(left);
  scheduler.runUntilIdle();
  const FrameRef frame = stream(1).deliver();
  scheduler.runUntilIdle();
  EXPECT_EQ(manager->currentFrame.get(), frame);
}

// The manager's tear-down leaves its stream to its owner; whatever the stream still reports
// afterwards (a sample, the end of a stop, its own end) finds no manager and touches nothing, as
// the sanitizer build checks.
TEST_F(VideoCaptureManagerTest, SamplesAndStopsAfterTheManagerIsGoneAreHarmless) {
  service.stopLatency = Seconds{0.2};
  manager->startCapture(left);
  manager->startCapture(right);  // ignored: one stream per manager
  scheduler.runUntilIdle();
  stream(0).deliver();
  manager.reset();
  scheduler.advance(Seconds{1});
  EXPECT_TRUE(stream(0).isRunning());
  stream(0).endWithError(CaptureError{"the monitor is gone"});
  scheduler.runUntilIdle();

  manager = std::make_unique<VideoCaptureManager>(scheduler, service);
  manager->startCapture(right);
  scheduler.runUntilIdle();
  manager->stopCapture();
  manager.reset();
  scheduler.advance(Seconds{1});
  EXPECT_EQ(service.streams.size(), 2u);
}

TEST(VideoCaptureManagerDeathTest, AFrameRateBeyond32BitsStopsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const Display display = test::makeDisplay(1, 4, 3);
  EXPECT_DEATH(VideoCaptureManager::configurationFor(
                   display, std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1),
               "fps");
  EXPECT_DEATH(VideoCaptureManager::configurationFor(
                   display, std::int64_t{std::numeric_limits<std::int32_t>::min()} - 1),
               "fps");
}

}  // namespace
}  // namespace orlet
