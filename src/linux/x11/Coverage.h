#pragma once

#include <vector>

#include "foundation/Geometry.h"

namespace orlet::x11 {

// The parts of `target` that none of `covers` overlaps, as disjoint rectangles. X has no
// occlusion state for us to read without a compositor, so the panel works it out from the
// stacking order and this.
std::vector<Rect> uncoveredParts(Rect target, const std::vector<Rect>& covers);

}  // namespace orlet::x11
