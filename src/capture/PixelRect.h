#pragma once

#include <cstddef>
#include <vector>

#include "foundation/PixelRect.h"

namespace orlet {

// Replaces every two rectangles whose bounding box is no larger than both together (one holds
// the other, or they overlap or touch along a side) with that box, until none are left: a
// drawing that repaints the same spot twice is read once.
void mergeOverlapping(std::vector<PixelRect>& rects);

// The parts of `damage` (global coordinates) inside `area`, relative to `area`'s origin, merged
// as above. More than `maxRects` parts become their bounding box: past that, one large read is
// cheaper than many small ones.
std::vector<PixelRect> damageWithin(const std::vector<PixelRect>& damage, const PixelRect& area,
                                    std::size_t maxRects);

}  // namespace orlet
