#include "linux/x11/Coverage.h"

#include <gtest/gtest.h>

namespace orlet::x11 {
namespace {

double area(const std::vector<Rect>& parts) {
  double total = 0;
  for (const auto& r : parts) total += r.width * r.height;
  return total;
}

TEST(Coverage, LeavesWhatNoWindowInFrontCovers) {
  const Rect panel{100, 100, 200, 100};
  EXPECT_EQ(area(uncoveredParts(panel, {})), 200 * 100);
  EXPECT_EQ(area(uncoveredParts(panel, {{0, 0, 50, 50}})), 200 * 100);  // elsewhere
  EXPECT_TRUE(uncoveredParts(panel, {{0, 0, 1000, 1000}}).empty());     // one big window
  EXPECT_TRUE(uncoveredParts(panel, {{100, 100, 100, 100}, {200, 100, 100, 100}}).empty());
  EXPECT_EQ(area(uncoveredParts(panel, {{150, 120, 20, 20}})), 200 * 100 - 20 * 20);  // a hole
  // Touching edges overlap nothing: a window ending where the panel starts covers none of it.
  EXPECT_EQ(area(uncoveredParts(panel, {{0, 100, 100, 100}, {300, 0, 50, 500}})), 200 * 100);
  // Four windows around a one-pixel gap: the panel is still visible there.
  const auto gap = uncoveredParts(
      panel, {{100, 100, 200, 50}, {100, 151, 200, 50}, {100, 150, 100, 1}, {201, 150, 100, 1}});
  ASSERT_EQ(gap.size(), 1u);
  EXPECT_EQ(gap.front(), (Rect{200, 150, 1, 1}));
}

}  // namespace
}  // namespace orlet::x11
