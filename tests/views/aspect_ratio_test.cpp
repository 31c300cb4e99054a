#include <gtest/gtest.h>

#include "views/AspectRatio.h"

namespace orlet {
namespace {

struct RatioCase {
  std::int64_t width;
  std::int64_t height;
  const char* label;
};

// Within 5 % of a named shape, the first such row of the list wins; otherwise the best small
// fraction.
TEST(AspectRatio, NamesCommonShapesAndFallsBackToTheBestSmallFraction) {
  const RatioCase cases[] = {
      {1920, 1080, "16/9"},  {1366, 768, "16/9"},   {2560, 1600, "8/5"},  {3440, 1440, "7/3"},
      {2560, 1080, "7/3"},   {5120, 1440, "32/9"},  {1600, 1200, "4/3"},  {1280, 1024, "5/4"},
      {1024, 1024, "1/1"},   {1500, 1000, "3/2"},  // 6.25 % from 8/5: not close enough
      {1550, 1000, "8/5"},  // within 5 % of both 8/5 and 3/2: the earlier row wins
      {1440, 1000, "3/2"},  // 8 % from 4/3, 4 % from 3/2
      {1900, 1000, "19/10"}, {2048, 1080, "55/29"}, {1080, 1920, "9/16"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(aspectRatio(c.width, c.height), c.label) << c.width << "x" << c.height;
  }
}

// The smallest denominator up to 50 whose rounded numerator is at most 200, reduced; the size
// itself, reduced, when there is none.
TEST(AspectRatio, SimplifiedRatioPrefersTheSmallestDenominatorAndReduces) {
  const RatioCase cases[] = {
      {3, 2, "3/2"},                            // denominator 2 is found before 4, 6, ...
      {355, 113, "22/7"}, {8000, 10, "800/1"},  // every numerator above 200
      {401, 2, "401/2"},   // 200.5 rounds half away from zero to 201, above the limit
      {1000, 7, "143/1"},  // 1000/7 itself has a numerator above 200
  };
  for (const auto& c : cases) {
    EXPECT_EQ(simplifiedRatio(c.width, c.height), c.label) << c.width << "x" << c.height;
  }
}

TEST(AspectRatioDeathTest, ZeroHeightIsAProgrammingError) {
  EXPECT_DEATH(simplifiedRatio(1920, 0), "cannot round");
}

}  // namespace
}  // namespace orlet
