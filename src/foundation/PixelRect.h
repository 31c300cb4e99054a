#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace orlet {

// A rectangle of whole pixels.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool isEmpty() const { return width <= 0 || height <= 0; }
  std::int64_t area() const { return isEmpty() ? 0 : std::int64_t{width} * height; }
  int maxX() const { return x + width; }
  int maxY() const { return y + height; }
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

inline PixelRect intersection(const PixelRect& a, const PixelRect& b) {
  const int x0 = std::max(a.x, b.x);
  const int y0 = std::max(a.y, b.y);
  const int x1 = std::min(a.maxX(), b.maxX());
  const int y1 = std::min(a.maxY(), b.maxY());
  if (x1 <= x0 || y1 <= y0) return {};
  return {x0, y0, x1 - x0, y1 - y0};
}

inline PixelRect boundingBox(const std::vector<PixelRect>& rects) {
  PixelRect box;
  bool first = true;
  for (const auto& r : rects) {
    if (r.isEmpty()) continue;
    if (first) {
      box = r;
      first = false;
      continue;
    }
    const int x0 = std::min(box.x, r.x);
    const int y0 = std::min(box.y, r.y);
    box = {x0, y0, std::max(box.maxX(), r.maxX()) - x0, std::max(box.maxY(), r.maxY()) - y0};
  }
  return box;
}

}  // namespace orlet
