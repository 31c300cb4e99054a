#include <gtest/gtest.h>

#include "support/GeometryPrinters.h"
#include "views/AdaptiveGrid.h"

namespace orlet {
namespace {

TEST(AdaptiveGrid, FitsAsManyColumnsOfTheMinimumWidthAsTheWidthAllows) {
  const AdaptiveGrid grid;  // minimum 200, spacing 16, padding 8
  struct Case {
    double width;
    int columns;
    double columnWidth;
  };
  const Case cases[] = {
      {900, 4, (884 - 48) / 4.0},  // 4 x 200 + 3 x 16 = 848 <= 884
      {431, 1, 415},               // 2 x 200 + 16 = 416 > 415
      {432, 2, 200},               // exactly two columns of the minimum
      {100, 1, 84},                // narrower than the minimum: still one column
  };
  for (const auto& c : cases) {
    EXPECT_EQ(grid.columns(c.width), c.columns) << c.width;
    EXPECT_DOUBLE_EQ(grid.columnWidth(c.width), c.columnWidth) << c.width;
  }
}

TEST(AdaptiveGrid, CellsFillRowsLeftToRightInsideThePadding) {
  const AdaptiveGrid grid;
  EXPECT_EQ(grid.cells(432, 3, 150),
            (std::vector<Rect>{{8, 8, 200, 150}, {224, 8, 200, 150}, {8, 174, 200, 150}}));
  EXPECT_DOUBLE_EQ(grid.height(3, 432, 150), 8 + 150 + 16 + 150 + 8);
  EXPECT_DOUBLE_EQ(grid.height(0, 432, 150), 16);
}

}  // namespace
}  // namespace orlet
