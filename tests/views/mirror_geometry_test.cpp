#include <gtest/gtest.h>

#include "support/GeometryPrinters.h"
#include "views/MirrorGeometry.h"

namespace orlet {
namespace {

TEST(MirrorGeometry, RelativeAndGlobalPointsRoundTripOnEveryArrangement) {
  struct Case {
    Rect bounds;
    Point relative;
    Point global;
  };
  const Case cases[] = {
      {{1920, 0, 2560, 1440}, {0.5, 0.5}, {3200, 720}},
      {{0, -1080, 1920, 1080}, {0, 0}, {0, -1080}},       // above the main display
      {{-1280, 0, 1280, 1024}, {0.25, 1}, {-960, 1024}},  // left of it
  };
  for (const auto& c : cases) {
    EXPECT_EQ(globalPoint(c.bounds, c.relative), c.global);
    EXPECT_EQ(relativePoint(c.bounds, c.global), c.relative);
  }
}

// The hot spot sits on the pointer's spot at the real cursor size; no cursor is drawn for a
// pointer off the display (its right and bottom edges included) or without an image.
TEST(MirrorGeometry, CursorIsPlacedByItsHotSpotOnlyWhileOnTheDisplay) {
  const Rect display{0, 0, 1920, 1080};
  const Size view{400, 300};
  const CursorSample centre{{32, 32}, {4, 6}, {960, 540}};
  EXPECT_EQ(cursorFrame(display, view, centre), (Rect{196, 144, 32, 32}));
  EXPECT_EQ(cursorFrame(display, view, centre, 2.0), (Rect{192, 138, 64, 64}));
  const Rect second{1920, 0, 2560, 1440};  // right of the main one, pointer at its first pixel
  EXPECT_EQ(cursorFrame(second, {1280, 720}, {{24, 24}, {0, 0}, {1920, 0}}), (Rect{0, 0, 24, 24}));

  for (const Point p : {Point{1920, 540}, Point{960, 1080}, Point{-1, 540}, Point{960, -0.5}}) {
    EXPECT_EQ(cursorFrame(display, view, {{32, 32}, {0, 0}, p}), std::nullopt) << p.x << "," << p.y;
  }
  EXPECT_EQ(cursorFrame(display, view, {{0, 0}, {0, 0}, {960, 540}}), std::nullopt);
  EXPECT_EQ(cursorFrame(display, {0, 300}, {{32, 32}, {0, 0}, {960, 540}}), std::nullopt);
}

}  // namespace
}  // namespace orlet
