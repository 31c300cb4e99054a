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
      {300, 1, 284},
      {100, 1, 84},  // narrower than the minimum: still one column
  };
  for (const auto& c : cases) {
    EXPECT_EQ(grid.columns(c.width), c.columns) << c.width;
    EXPECT_DOUBLE_EQ(grid.columnWidth(c.width), c.columnWidth) << c.width;
  }
}

TEST(AdaptiveGrid, CellsFillRowsLeftToRightInsideThePadding) {
  const AdaptiveGrid grid;
  const auto cells = grid.cells(432, 3, 150);
  ASSERT_EQ(cells.size(), 3u);
  EXPECT_EQ(cells[0], (Rect{8, 8, 200, 150}));
  EXPECT_EQ(cells[1], (Rect{224, 8, 200, 150}));
  EXPECT_EQ(cells[2], (Rect{8, 174, 200, 150}));
  EXPECT_DOUBLE_EQ(grid.height(3, 432, 150), 8 + 150 + 16 + 150 + 8);
  EXPECT_DOUBLE_EQ(grid.height(0, 432, 150), 16);
  EXPECT_TRUE(grid.cells(432, 0, 150).empty());
}

}  // namespace
}  // namespace orlet
