#pragma once

#include <functional>
#include <optional>

#include "foundation/Geometry.h"

namespace orlet {

// The click overlay of the mirror: catches presses and releases over the aspect-fitted picture,
// discards drags, and reports a click as a point relative to the picture (0..1 from its top-left
// corner). Points are in the overlay's own coordinates, top-left origin, in points.
class ClickIntercept {
 public:
  // Strict: a release exactly this far from its press is still a click.
  static constexpr double maximumClickTravel = 3.0;

  double displayAspect = 1.0;  // display width / height
  std::function<void(Point)> onRelativeClick;

  // The part of `bounds` covered by the picture; offsets are measured from 0, the overlay
  // passing its own bounds. Empty for an empty `bounds`.
  Rect effectiveRect(Rect bounds) const;

  // Whether a press at `point` belongs to the overlay; the letterbox bands let it through.
  bool hitTest(Rect bounds, Point point) const { return effectiveRect(bounds).contains(point); }

  void mouseDown(Rect bounds, Point point);
  void mouseUp(Rect bounds, Point point);

  const std::optional<Point>& mouseDownPoint() const { return mouseDownPoint_; }

 private:
  std::optional<Point> mouseDownPoint_;
};

}  // namespace orlet
