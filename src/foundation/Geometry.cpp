#include "foundation/Geometry.h"

namespace orlet {

Rect aspectFit(Size content, Size container) {
  if (content.isEmpty() || container.isEmpty()) return {};
  const double contentAspect = content.width / content.height;
  const double viewAspect = container.width / container.height;
  if (viewAspect < contentAspect) {
    const double height = container.width / contentAspect;
    return {0, (container.height - height) / 2, container.width, height};
  }
  if (contentAspect < viewAspect) {
    const double width = container.height * contentAspect;
    return {(container.width - width) / 2, 0, width, container.height};
  }
  return {0, 0, container.width, container.height};
}

Point flipped(Point p, double referenceHeight) {
  return {p.x, referenceHeight - p.y};
}

Rect flipped(Rect r, double referenceHeight) {
  return {r.x, referenceHeight - r.y - r.height, r.width, r.height};
}

}  // namespace orlet
