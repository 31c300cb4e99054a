#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "capture/DisplayManager.h"
#include "support/FakeCaptureService.h"
#include "support/FakeInput.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "views/ClickIntercept.h"
#include "views/FakeDisplayInfoProvider.h"

namespace orlet {
namespace {

// A mirror 400 x 300 over a 16:9 display: the picture is (0, 37.5, 400, 225).
TEST(ClickIntercept, ReportsShortClicksOnThePictureOnly) {
  struct Case {
    const char* what;
    Size view;
    Point press, release;
    std::optional<Point> relative;
  };
  const Case cases[] = {
      {"top edge of the picture", {400, 300}, {200, 37.5}, {200, 37.5}, Point{0.5, 0.0}},
      {"press on the band above", {400, 300}, {200, 20}, {200, 40}, std::nullopt},
      {"moved 2.83 points", {400, 300}, {100, 100}, {102, 102}, Point{102 / 400.0, 64.5 / 225}},
      {"moved exactly 3 points",
       {400, 300},
       {100, 100},
       {103, 100},
       Point{103 / 400.0, 62.5 / 225}},
      {"moved 3.16 points", {400, 300}, {100, 100}, {103, 101}, std::nullopt},
      {"released on the band below", {400, 300}, {200, 261}, {200, 263}, std::nullopt},
      {"picture's right edge is outside", {400, 300}, {399, 100}, {400, 100}, std::nullopt},
      {"same aspect: the whole view", {160, 90}, {0, 0}, {0, 0}, Point{0, 0}},
      {"wider view: bands at the sides", {800, 225}, {200, 0}, {200, 0}, Point{0, 0}},
      {"empty view", {0, 300}, {0, 0}, {0, 0}, std::nullopt},
  };
  for (const auto& c : cases) {
    ClickIntercept intercept;
    intercept.displayAspect = 1920.0 / 1080.0;
    std::optional<Point> clicked;
    intercept.onRelativeClick = [&](Point p) { clicked = p; };
    const Rect bounds = Rect::from({0, 0}, c.view);
    intercept.mouseDown(bounds, c.press);
    intercept.mouseUp(bounds, c.release);
    ASSERT_EQ(clicked.has_value(), c.relative.has_value()) << c.what;
    if (clicked) {
      EXPECT_NEAR(clicked->x, c.relative->x, 1e-9) << c.what;
      EXPECT_NEAR(clicked->y, c.relative->y, 1e-9) << c.what;
    }
    EXPECT_EQ(intercept.mouseDownPoint(), std::nullopt) << c.what;
  }
}

// A press outside the picture is forgotten: the release after it does nothing, even inside;
// and only a press inside starts a click.
TEST(ClickIntercept, OnlyAPressOnThePictureStartsAClick) {
  ClickIntercept intercept;
  intercept.displayAspect = 16.0 / 9;
  int clicks = 0;
  intercept.onRelativeClick = [&](Point) { ++clicks; };
  const Rect bounds{0, 0, 400, 300};
  EXPECT_FALSE(intercept.hitTest(bounds, {200, 20}));
  EXPECT_TRUE(intercept.hitTest(bounds, {200, 40}));
  intercept.mouseDown(bounds, {200, 20});
  intercept.mouseUp(bounds, {200, 40});
  intercept.mouseUp(bounds, {200, 40});
  EXPECT_EQ(clicks, 0);
  intercept.mouseDown(bounds, {200, 40});
  intercept.mouseUp(bounds, {200, 40});
  EXPECT_EQ(clicks, 1);
}

class ClickForwardingTest : public ::testing::Test {
 protected:
  ClickForwardingTest() {
    info.displays[1].bounds = {1920, 0, 2560, 1440};
    info.displays[2].bounds = {0, -1080, 1920, 1080};  // above the main display
  }

  test::VirtualScheduler scheduler;
  test::FakeCaptureService capture{scheduler};
  test::FakeDisplayInfoProvider info;
  test::FakeWindowServer server;
  test::FakeSyntheticInput input{server, scheduler};
  std::ostringstream out;
  std::unique_ptr<DisplayManager> dm = std::make_unique<DisplayManager>(
      scheduler, capture, ClickForwardingPorts{&info, &input, &out});
};

// The relative point becomes a global one in the display's bounds; a press there, the release
// 10 ms later at the same spot, and one line naming the bounds and the point.
TEST_F(ClickForwardingTest, ClickIsReplayedAtTheMatchingGlobalPoint) {
  using Event = test::FakeSyntheticInput::Event;
  struct Case {
    std::uint32_t display;
    Point relative;
    Point target;
    const char* line;
  };
  const Case cases[] = {
      {1,
       {0.5, 0.5},
       {3200, 720},
       "Display bounds: (1920.0, 0.0, 2560.0, 1440.0) → click: (3200.0, 720.0)\n"},
      {2,
       {0, 0},
       {0, -1080},
       "Display bounds: (0.0, -1080.0, 1920.0, 1080.0) → click: (0.0, -1080.0)\n"},
      {1,
       {0.25, 0.1},
       {2560, 144},
       "Display bounds: (1920.0, 0.0, 2560.0, 1440.0) → click: (2560.0, 144.0)\n"},
  };
  for (const auto& c : cases) {
    input.events.clear();
    out.str("");
    const Seconds start = scheduler.now();
    dm->simulateClickOnDisplay(test::makeDisplay(c.display, 1, 1), c.relative);
    EXPECT_EQ(out.str(), c.line);
    scheduler.advance(Seconds{0.009});
    EXPECT_EQ(input.events, (std::vector<Event>{{"down", c.target, start}}));
    scheduler.advance(Seconds{0.002});
    EXPECT_EQ(input.events, (std::vector<Event>{{"down", c.target, start},
                                                {"up", c.target, start + Seconds{0.010}}}));
    scheduler.advance(Seconds{1});
  }
}

// The release still comes when the catalogue is gone meanwhile: the button is never left down.
TEST_F(ClickForwardingTest, TheReleaseOutlivesTheCatalogue) {
  dm->simulateClickOnDisplay(test::makeDisplay(1, 1, 1), {0.5, 0.5});
  dm.reset();
  scheduler.advance(Seconds{0.010});
  ASSERT_EQ(input.events.size(), 2u);
  EXPECT_EQ(input.events.back().kind, "up");
}

}  // namespace
}  // namespace orlet
