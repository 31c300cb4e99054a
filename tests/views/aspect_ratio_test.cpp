#include <gtest/gtest.h>

#include "views/AspectRatio.h"

namespace orlet {
namespace {

struct RatioCase {
  std::int64_t width;
  std::int64_t height;
  const char* label;
};

TEST(AspectRatio, NamesCommonShapesAndFallsBackToTheBestSmallFraction) {
  const RatioCase cases[] = {
      {1920, 1080, "16/9"},  {2560, 1600, "8/5"}, {3440, 1440, "7/3"},   {5120, 1440, "32/9"},
      {1024, 1024, "1/1"},   {1366, 768, "16/9"}, {2048, 1080, "55/29"}, {2560, 1080, "7/3"},
      {1080, 1920, "9/16"},  {8000, 10, "800/1"}, {1280, 1024, "5/4"},   {1600, 1200, "4/3"},
      {1500, 1000, "3/2"},  // 6.25 % from 8/5: not close enough
      {1550, 1000, "8/5"},  // within 5 % of both 8/5 and 3/2: the earlier row wins
      {1440, 1000, "3/2"},  // 8 % from 4/3, 4 % from 3/2
      {1900, 1000, "19/10"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(aspectRatio(c.width, c.height), c.label) << c.width << "x" << c.height;
  }
}

TEST(AspectRatio, BestSmallFractionPrefersTheSmallestDenominatorAndReduces) {
  const RatioCase cases[] = {
      {3, 2, "3/2"},  // denominator 2 is found before 4, 6, ...
      {2048, 1080, "55/29"}, {1080, 1920, "9/16"},
      {8000, 10, "800/1"},  // every numerator above 200: the size itself, reduced
      {401, 2, "401/2"},    // 200.5 rounds half away from zero to 201, above the limit
      {1000, 7, "143/1"},   // 1000/7 itself has a numerator above 200
      {355, 113, "22/7"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(simplifiedRatio(c.width, c.height), c.label) << c.width << "x" << c.height;
  }
}

TEST(AspectRatio, GcdIsEuclidBySignedRemainder) {
  EXPECT_EQ(gcd(1920, 1080), 120);
  EXPECT_EQ(gcd(7, 0), 7);
  EXPECT_EQ(gcd(0, 7), 7);
  EXPECT_EQ(gcd(17, 5), 1);
  EXPECT_EQ(gcd(-12, 8), -4);  // the remainder keeps the dividend's sign
  EXPECT_EQ(gcd(12, -8), 4);
}

TEST(AspectRatioDeathTest, ZeroHeightIsAProgrammingError) {
  EXPECT_DEATH(simplifiedRatio(1920, 0), "cannot round");
}

}  // namespace
}  // namespace orlet
