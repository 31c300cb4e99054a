#include "views/MirrorGeometry.h"

namespace orlet {
Point globalPoint(Rect bounds, Point relative) {
  return {bounds.x + relative.x * bounds.width, bounds.y + relative.y * bounds.height};
}

Point relativePoint(Rect bounds, Point global) {
  return {(global.x - bounds.x) / bounds.width, (global.y - bounds.y) / bounds.height};
}

Point viewPoint(Rect picture, Point relative) {
  return {picture.x + relative.x * picture.width, picture.y + relative.y * picture.height};
}

std::optional<Rect> cursorFrame(Rect displayBounds, Size viewSize, const CursorSample& cursor,
                                double scale) {
  if (!displayBounds.contains(cursor.position) || cursor.imageSize.isEmpty()) {
    return std::nullopt;
  }
  const Rect picture = mirrorPictureRect(displayBounds.size(), viewSize);
  if (picture.isEmpty()) return std::nullopt;
  const Point target = viewPoint(picture, relativePoint(displayBounds, cursor.position));
  return Rect{target.x - cursor.hotSpot.x * scale, target.y - cursor.hotSpot.y * scale,
              cursor.imageSize.width * scale, cursor.imageSize.height * scale};
}

}  // namespace orlet
