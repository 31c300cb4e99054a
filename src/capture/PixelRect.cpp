#include "capture/PixelRect.h"

namespace orlet {

std::vector<PixelRect> damageWithin(const std::vector<PixelRect>& damage, const PixelRect& area,
                                    std::size_t maxRects) {
  std::vector<PixelRect> result;
  for (const auto& rect : damage) {
    const PixelRect part = intersection(rect, area);
    if (!part.isEmpty())
      result.push_back({part.x - area.x, part.y - area.y, part.width, part.height});
  }
  mergeOverlapping(result);
  if (result.size() > maxRects) result = {boundingBox(result)};
  return result;
}

void mergeOverlapping(std::vector<PixelRect>& rects) {
  bool merged = true;
  while (merged) {
    merged = false;
    for (std::size_t i = 0; i < rects.size() && !merged; ++i) {
      for (std::size_t j = i + 1; j < rects.size() && !merged; ++j) {
        const PixelRect box = boundingBox({rects[i], rects[j]});
        if (box.area() > rects[i].area() + rects[j].area()) continue;
        rects[i] = box;
        rects.erase(rects.begin() + std::ptrdiff_t(j));
        merged = true;
      }
    }
  }
}

}  // namespace orlet
