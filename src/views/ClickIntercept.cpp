#include "views/ClickIntercept.h"

#include <utility>

namespace orlet {

Rect ClickIntercept::effectiveRect(Rect bounds) const {
  return aspectFit({displayAspect, 1.0}, bounds.size());
}

void ClickIntercept::mouseDown(Rect bounds, Point point) {
  if (effectiveRect(bounds).contains(point)) mouseDownPoint_ = point;
}

void ClickIntercept::mouseUp(Rect bounds, Point point) {
  const auto down = std::exchange(mouseDownPoint_, std::nullopt);
  if (!down) return;
  const Rect picture = effectiveRect(bounds);
  if (!picture.contains(point) || distance(*down, point) > maximumClickTravel) return;
  const Point relative{(point.x - picture.minX()) / picture.width,
                       (point.y - picture.minY()) / picture.height};
  if (onRelativeClick) onRelativeClick(relative);
}

}  // namespace orlet
