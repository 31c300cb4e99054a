#include <gtest/gtest.h>

#include "support/FakeCaptureService.h"
#include "support/GeometryPrinters.h"
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
  const test::FakeCaptureStream* stream() const {
    return capture.streams.empty() ? nullptr : capture.streams.back().get();
  }

  test::VirtualScheduler scheduler;
  test::FakeCaptureService capture{scheduler};
  test::FakeDisplayInfoProvider info;
  const Display display = test::makeDisplay(77, 2560, 1440, 1920);
  std::optional<DisplayID> tracking;
};

TEST_F(DisplayPreviewModelTest, CardTellsItsNameAndDetails) {
  info.displays[77] = {{0, 0}, ScreenDescription{"DUMMY1", 60, std::nullopt}, "R8G8B8", {}};
  const auto card = preview(false, 2);
  EXPECT_EQ(card->displayName(), "Écran 2");
  EXPECT_EQ(card->displayDetailedInfo(), "DUMMY1\n2560 × 1440\n16/9\n60 Hz\n8-bit");
  EXPECT_EQ(preview(false, 1)->displayName(), "Principal");

  EXPECT_FALSE(card->showingInfo.get());
  card->toggleInfo();
  EXPECT_TRUE(card->showingInfo.get());
  card->toggleInfo();
  EXPECT_FALSE(card->showingInfo.get());
}

TEST_F(DisplayPreviewModelTest, CardCapturesAtThirtyFramesWhileShownWithoutCompanions) {
  const auto card = preview(false, 1);
  card->appear();
  scheduler.runUntilIdle();
  ASSERT_NE(stream(), nullptr);
  EXPECT_TRUE(stream()->isRunning());
  EXPECT_EQ(stream()->configuration().minimumFrameInterval, (MediaTime{1, 30}));
  EXPECT_EQ(stream()->display(), display);
  EXPECT_EQ(tracking, std::nullopt);

  const_cast<test::FakeCaptureStream*>(stream())->deliver();
  scheduler.runUntilIdle();
  ASSERT_NE(card->cm().currentFrame.get(), nullptr);
  EXPECT_EQ(card->cm().currentFrame.get()->width(), 2560);

  card->disappear();
  scheduler.runUntilIdle();
  EXPECT_FALSE(stream()->isRunning());
  EXPECT_EQ(card->cm().currentFrame.get(), nullptr);
}

TEST_F(DisplayPreviewModelTest, MirrorRunsItsCompanionsWithItsCapture) {
  const auto mirror = preview(true, 2);
  mirror->disappear();  // never started: nothing to stop, nothing breaks
  EXPECT_EQ(tracking, std::nullopt);

  mirror->appear();
  scheduler.runUntilIdle();
  EXPECT_EQ(tracking, DisplayID{77});
  EXPECT_TRUE(stream()->isRunning());
  mirror->disappear();
  scheduler.runUntilIdle();
  EXPECT_EQ(tracking, std::nullopt);
  EXPECT_FALSE(stream()->isRunning());
}

TEST_F(DisplayPreviewModelTest, PictureRectIsSharedByEveryLayerOfTheMirror) {
  const auto mirror = preview(true, 1);
  EXPECT_EQ(mirror->pictureRect({1280, 900}), (Rect{0, 90, 1280, 720}));
  EXPECT_EQ(mirror->pictureRect({0, 900}), Rect{});
}

}  // namespace
}  // namespace orlet
