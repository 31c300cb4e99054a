#include <gtest/gtest.h>

#include "foundation/Geometry.h"

namespace orlet {
namespace {

TEST(Geometry, ContainmentIsHalfOpen) {
  const Rect display{1920, 0, 2560, 1440};
  EXPECT_TRUE(display.contains({1920, 0}));
  EXPECT_TRUE(display.contains({4479.9, 1439.9}));
  EXPECT_FALSE(display.contains({4480, 100}));   // right edge
  EXPECT_FALSE(display.contains({2000, 1440}));  // bottom edge
  EXPECT_FALSE(display.contains({1919.9, 10}));
  const Rect negative{-1280, -1024, 1280, 1024};  // a display left of and above the main one
  EXPECT_TRUE(negative.contains({-1, -1}));
  EXPECT_FALSE(negative.contains({0, -1}));
}

TEST(Geometry, AspectFitLetterboxesOnTheLongSide) {
  // Taller view than the 16:9 display: full width, bands above and below.
  EXPECT_EQ(aspectFit({1920, 1080}, {400, 300}), (Rect{0, 37.5, 400, 225}));
  // Wider view: full height, bands left and right.
  EXPECT_EQ(aspectFit({2000, 1000}, {1000, 400}), (Rect{100, 0, 800, 400}));
  EXPECT_EQ(aspectFit({2560, 1440}, {1280, 720}), (Rect{0, 0, 1280, 720}));
  EXPECT_EQ(aspectFit({0, 1080}, {400, 300}), Rect{});
  EXPECT_EQ(aspectFit({1920, 1080}, {400, 0}), Rect{});
}

TEST(Geometry, FlipConvertsBetweenTopLeftAndBottomLeftOrigins) {
  const double mainHeight = 1080;
  EXPECT_EQ(flipped(Point{10, 0}, mainHeight), (Point{10, 1080}));
  const Rect global{100, 50, 900, 600};
  const Rect native = flipped(global, mainHeight);
  EXPECT_EQ(native, (Rect{100, 430, 900, 600}));
  EXPECT_EQ(flipped(native, mainHeight), global);
  EXPECT_DOUBLE_EQ(distance({0, 0}, {3, 4}), 5.0);
}

}  // namespace
}  // namespace orlet
