#include <gtest/gtest.h>

#include "support/GeometryPrinters.h"

namespace orlet {
namespace {

TEST(Geometry, ContainmentIsHalfOpenOnEveryArrangement) {
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
  EXPECT_EQ(aspectFit({1920, 1080}, {400, 300}), (Rect{0, 37.5, 400, 225}));  // bands above, below
  EXPECT_EQ(aspectFit({1080, 1920}, {900, 600}), (Rect{281.25, 0, 337.5, 600}));  // left, right
  EXPECT_EQ(aspectFit({2560, 1440}, {1280, 720}), (Rect{0, 0, 1280, 720}));
  EXPECT_EQ(aspectFit({0, 1080}, {400, 300}), Rect{});
  EXPECT_EQ(aspectFit({1920, 1080}, {400, 0}), Rect{});
}

}  // namespace
}  // namespace orlet
