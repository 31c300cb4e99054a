#include "views/AdaptiveGrid.h"

#include <algorithm>
#include <cmath>

namespace orlet {

int AdaptiveGrid::columns(double width) const {
  const double available = width - 2 * padding;
  const int fitting =
      static_cast<int>(std::floor((available + spacing) / (minimumColumnWidth + spacing)));
  return std::max(1, fitting);
}

double AdaptiveGrid::columnWidth(double width) const {
  const int n = columns(width);
  const double available = width - 2 * padding;
  return std::max(0.0, (available - (n - 1) * spacing) / n);
}

std::vector<Rect> AdaptiveGrid::cells(double width, std::size_t count, double rowHeight) const {
  const int n = columns(width);
  const double cellWidth = columnWidth(width);
  std::vector<Rect> result;
  result.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto column = static_cast<double>(i % n);
    const auto row = static_cast<double>(i / n);
    result.push_back({padding + column * (cellWidth + spacing),
                      padding + row * (rowHeight + spacing), cellWidth, rowHeight});
  }
  return result;
}

double AdaptiveGrid::height(std::size_t count, double width, double rowHeight) const {
  const auto n = static_cast<std::size_t>(columns(width));
  const auto rows = static_cast<double>((count + n - 1) / n);
  if (rows == 0) return 2 * padding;
  return 2 * padding + rows * rowHeight + (rows - 1) * spacing;
}

}  // namespace orlet
