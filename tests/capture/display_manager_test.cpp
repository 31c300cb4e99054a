#include "capture/DisplayManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

using test::FakeSample;
using test::makeDisplay;

std::vector<DisplayID> ids(const std::vector<Display>& list) {
  std::vector<DisplayID> result;
  for (const auto& d : list) result.push_back(d.displayID);
  return result;
}

class DisplayManagerTest : public ::testing::Test {
 protected:
  std::size_t runningStreams() const {
    return std::count_if(service.streams.begin(), service.streams.end(),
                         [](const auto& s) { return s->isRunning(); });
  }
  // Advances in small steps until the refresh ends; returns the most streams seen at once.
  std::size_t finishRefresh() {
    std::size_t most = 0;
    for (int i = 0; i < 1000 && manager->isLoading.get(); ++i) {
      scheduler.advance(Seconds{0.01});
      most = std::max(most, runningStreams());
    }
    EXPECT_FALSE(manager->isLoading.get());
    return most;
  }

  test::VirtualScheduler scheduler;
  test::FakeCaptureService service{scheduler};
  std::unique_ptr<DisplayManager> manager = std::make_unique<DisplayManager>(scheduler, service);
};

TEST_F(DisplayManagerTest, KeepsDisplaysWhoseFirstSampleHasAPictureMainFirstOtherwiseInOrder) {
  service.displays = {makeDisplay(10, 800, 600, 0),    makeDisplay(11, 1920, 1080, 800, true),
                      makeDisplay(12, 640, 480, 2720), makeDisplay(13, 640, 480, 3360),
                      makeDisplay(14, 640, 480, 4000), makeDisplay(15, 1024, 768, 4640)};
  service.samples[13] = {FakeSample{Seconds{0}, false}};  // nothing on screen
  // A first sample without picture fails the display even though pictures follow.
  service.samples[14] = {FakeSample{Seconds{0}, false}, FakeSample{Seconds{0.02}},
                         FakeSample{Seconds{0.04}}};
  service.samples[15] = {FakeSample{Seconds{0.15}}};  // too late for the test period

  manager->refresh();
  EXPECT_TRUE(manager->isLoading.get());
  const std::size_t mostAtOnce = finishRefresh();

  EXPECT_EQ(ids(manager->displays.get()), (std::vector<DisplayID>{11, 10, 12}));
  EXPECT_EQ(mostAtOnce, 1u);  // one test capture at a time
  EXPECT_GE(scheduler.now().count(), 6 * DisplayManager::testPeriod.count());
  EXPECT_EQ(manager->activeStreamCount(), 0u);
  // Each test captured the whole display at its own size, once: no second picture comes within the
  // test period.
  EXPECT_EQ(service.streams.at(1)->configuration().width, 1920);
  EXPECT_EQ(service.streams.at(1)->configuration().height, 1080);
  EXPECT_GT(service.streams.at(1)->configuration().minimumFrameInterval.seconds(),
            DisplayManager::testPeriod);
}

TEST_F(DisplayManagerTest, NoDisplayWithAPictureOrNoContentGivesAnEmptyList) {
  service.displays = {makeDisplay(1, 100, 100, 0, true)};
  manager->refresh();
  finishRefresh();
  ASSERT_EQ(manager->displays->size(), 1u);

  service.samples[1] = {FakeSample{Seconds{0}, false}};
  manager->refresh();
  finishRefresh();
  EXPECT_TRUE(manager->displays->empty());

  service.samples.clear();
  service.contentAbsent = true;
  manager->refresh();
  finishRefresh();
  EXPECT_TRUE(manager->displays->empty());
}

TEST_F(DisplayManagerTest, ARefreshRequestedWhileOneRunsChangesNothing) {
  service.displays = {makeDisplay(1, 100, 100), makeDisplay(2, 100, 100, 100, true)};
  std::vector<bool> loadingChanges;
  auto subscription = manager->isLoading.observe([&](bool v) { loadingChanges.push_back(v); });

  manager->refresh();
  scheduler.advance(Seconds{0.05});
  manager->refresh();
  finishRefresh();

  EXPECT_EQ(service.streams.size(), 2u);
  EXPECT_EQ(loadingChanges, (std::vector<bool>{true, false}));
  EXPECT_EQ(ids(manager->displays.get()), (std::vector<DisplayID>{2, 1}));
}

TEST_F(DisplayManagerTest, AFailedListingKeepsThePreviousListAndPermission) {
  service.displays = {makeDisplay(1, 100, 100, 0, true)};
  manager->refresh();
  finishRefresh();
  manager->hasPermission.set(true);

  service.displays.push_back(makeDisplay(2, 100, 100, 100));
  service.contentError = CaptureError{"denied"};
  manager->refresh();
  EXPECT_TRUE(manager->isLoading.get());
  scheduler.runUntilIdle();

  EXPECT_FALSE(manager->isLoading.get());
  EXPECT_EQ(ids(manager->displays.get()), std::vector<DisplayID>{1});
  EXPECT_TRUE(manager->hasPermission.get());
  EXPECT_TRUE(service.streams.size() == 1u);  // nothing was tested
}

TEST_F(DisplayManagerTest, AnErrorAtAnyStepOfTheTestCaptureDropsThatDisplayOnly) {
  service.displays = {makeDisplay(1, 10, 10, 0, true), makeDisplay(2, 10, 10, 10),
                      makeDisplay(3, 10, 10, 20), makeDisplay(4, 10, 10, 30)};
  service.failures[1].addOutput = true;
  service.failures[2].start = true;
  service.failures[3].stop = true;

  manager->refresh();
  finishRefresh();

  EXPECT_EQ(ids(manager->displays.get()), std::vector<DisplayID>{4});
  EXPECT_EQ(manager->activeStreamCount(), 0u);
}

TEST_F(DisplayManagerTest, StopAllDuringARefreshFailsTheRunningValidationOnly) {
  service.displays = {makeDisplay(1, 10, 10, 0, true), makeDisplay(2, 10, 10, 10)};
  manager->refresh();
  scheduler.advance(Seconds{0.05});  // display 1 is being tested and has shown a picture
  ASSERT_EQ(manager->activeStreamCount(), 1u);

  manager->stopAll();
  EXPECT_EQ(manager->activeStreamCount(), 0u);
  EXPECT_EQ(runningStreams(), 0u);
  // The stopped test answers at once: the next display is under test before the period ends.
  scheduler.runUntilIdle();
  EXPECT_EQ(service.streams.size(), 2u);
  finishRefresh();

  EXPECT_EQ(ids(manager->displays.get()), std::vector<DisplayID>{2});
  EXPECT_EQ(manager->activeStreamCount(), 0u);
}

TEST_F(DisplayManagerTest, ValidateAnswersOnceAfterTheTestPeriodAndForgetsItsStream) {
  std::vector<bool> answers;
  manager->validate(makeDisplay(7, 10, 10), [&](bool valid) { answers.push_back(valid); });
  EXPECT_EQ(manager->activeStreamCount(), 1u);  // registered before anything runs

  scheduler.advance(Seconds{0.09});
  EXPECT_TRUE(answers.empty());
  scheduler.advance(Seconds{0.02});
  EXPECT_EQ(answers, std::vector<bool>{true});
  EXPECT_EQ(manager->activeStreamCount(), 0u);
  EXPECT_FALSE(service.streams.at(0)->isRunning());
}

TEST_F(DisplayManagerTest, ARefreshOutlivedByItsManagerEndsQuietly) {
  service.displays = {makeDisplay(1, 10, 10, 0, true), makeDisplay(2, 10, 10, 10)};
  manager->refresh();
  scheduler.advance(Seconds{0.05});
  manager.reset();
  scheduler.advance(Seconds{1});
  EXPECT_EQ(service.streams.size(), 1u);  // the second display was never tested
}

TEST(DisplayManagerSortTest, TheMainDisplayComesFirstAndTheOthersKeepTheirOrder) {
  std::vector<Display> list = {makeDisplay(5, 1, 1), makeDisplay(3, 1, 1),
                               makeDisplay(9, 1, 1, 0, true), makeDisplay(1, 1, 1),
                               makeDisplay(4, 1, 1)};
  DisplayManager::sortMainFirst(list);
  EXPECT_EQ(ids(list), (std::vector<DisplayID>{9, 5, 3, 1, 4}));
}

}  // namespace
}  // namespace orlet
