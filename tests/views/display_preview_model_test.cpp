#include <gtest/gtest.h>

#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"
#include "views/DisplayPreviewModel.h"
#include "views/FakeDisplayInfoProvider.h"

namespace orlet {
namespace {

// Records what a companion of the mirror is doing, as the pointer trackers will.
class StateCompanion final : public PreviewCompanion {
 public:
  explicit StateCompanion(std::optional<DisplayID>& tracking) : tracking_(tracking) {}
  void start(const Display& display) override { tracking_ = display.displayID; }
  void stop() override { tracking_.reset(); }

 private:
  std::optional<DisplayID>& tracking_;
};

class DisplayPreviewModelTest : public ::testing::Test {
 protected:
  std::unique_ptr<DisplayPreviewModel> preview(bool expanded, int index) {
    auto model = std::make_unique<DisplayPreviewModel>(scheduler, capture, info, display, expanded,
                                                       nullptr, index);
    model->addCompanion(std::make_unique<StateCompanion>(tracking));
    return model;
  }

  test::VirtualScheduler scheduler;
  test::FakeCaptureService capture{scheduler};
  test::FakeDisplayInfoProvider info;
  const Display display = test::makeDisplay(77, 2560, 1440, 1920);
  std::optional<DisplayID> tracking;
};

// Cards and the mirror capture their display at 30 frames a second while shown; only the mirror
// runs its companions beside its capture.
TEST_F(DisplayPreviewModelTest, StreamsWhileShownAndOnlyTheMirrorRunsCompanions) {
  for (const bool expanded : {false, true}) {
    const auto shown = preview(expanded, 1);
    shown->disappear();  // never started: nothing to stop, nothing breaks
    shown->appear();
    scheduler.runUntilIdle();
    auto* stream = capture.streams.back().get();
    EXPECT_TRUE(stream->isRunning());
    EXPECT_EQ(stream->configuration().minimumFrameInterval, (MediaTime{1, 30}));
    EXPECT_EQ(stream->display(), display);
    EXPECT_EQ(tracking, expanded ? std::optional(DisplayID{77}) : std::nullopt) << expanded;
    stream->deliver();
    scheduler.runUntilIdle();
    ASSERT_NE(shown->cm().currentFrame.get(), nullptr);
    EXPECT_EQ(shown->cm().currentFrame.get()->width(), 2560);

    shown->disappear();
    scheduler.runUntilIdle();
    EXPECT_FALSE(stream->isRunning());
    EXPECT_EQ(shown->cm().currentFrame.get(), nullptr);
    EXPECT_EQ(tracking, std::nullopt);
  }
}

// A display unplugged under its preview leaves the last picture, marked lost; the same display
// plugged back (same id, whatever its place) brings the preview back live by itself, another
// display does not; hiding the preview ends the wait.
TEST_F(DisplayPreviewModelTest, ALostDisplayIsMarkedAndComesBackLiveWhenItReturns) {
  capture.displays = {display};
  const auto shown = preview(true, 1);
  shown->appear();
  scheduler.runUntilIdle();
  const FrameRef last = shown->cm().currentFrame.get();
  ASSERT_NE(last, nullptr);
  EXPECT_FALSE(shown->cm().streamLost.get());

  capture.displays = {test::makeDisplay(78, 1920, 1080)};
  capture.streams.back()->endWithError(CaptureError{"the monitor is gone"});
  scheduler.advance(Seconds{5});
  EXPECT_TRUE(shown->cm().streamLost.get());
  EXPECT_EQ(shown->cm().currentFrame.get(), last);
  EXPECT_EQ(capture.streams.size(), 1u);

  capture.displays.push_back(test::makeDisplay(77, 1920, 1080, 2560));
  scheduler.advance(Seconds{2});
  ASSERT_EQ(capture.streams.size(), 2u);
  EXPECT_TRUE(capture.streams.back()->isRunning());
  EXPECT_EQ(capture.streams.back()->configuration().width, 1920);
  EXPECT_FALSE(shown->cm().streamLost.get());
  EXPECT_NE(shown->cm().currentFrame.get(), last);

  capture.streams.back()->endWithError(CaptureError{"the monitor is gone"});
  scheduler.runUntilIdle();
  ASSERT_TRUE(shown->cm().streamLost.get());
  shown->disappear();
  scheduler.advance(Seconds{5});
  EXPECT_EQ(capture.streams.size(), 2u);
  EXPECT_FALSE(shown->cm().streamLost.get());
  EXPECT_EQ(shown->cm().currentFrame.get(), nullptr);
}

}  // namespace
}  // namespace orlet
