#pragma once

#include <cstddef>
#include <vector>

#include "foundation/Geometry.h"

namespace orlet {

// A grid of equal cells that fits as many columns of at least `minimumColumnWidth` as the width
// allows (at least one), shares the rest of the width among them, and fills rows left to right.
struct AdaptiveGrid {
  double minimumColumnWidth = 200;
  double spacing = 16;  // between columns and between rows
  double padding = 8;   // around the whole grid

  int columns(double width) const;
  double columnWidth(double width) const;
  // The cell of every item, for `count` items of `rowHeight` in a grid `width` wide.
  std::vector<Rect> cells(double width, std::size_t count, double rowHeight) const;
  // The height the grid needs for `count` items, padding included.
  double height(std::size_t count, double width, double rowHeight) const;
};

}  // namespace orlet
