#pragma once

#include <optional>

#include "foundation/Geometry.h"

namespace orlet {

// Factor applied to the cursor image's size and hot spot on the mirror: the cursor keeps its
// real size rather than shrinking with the miniature.
inline constexpr double cursorScale = 1.0;

// Where the picture of a display of `displaySize` lies inside a mirror view of `viewSize`, in
// the view's own coordinates. The image, the click overlay, the cursor overlay and the position
// probe all use this one rectangle.
inline Rect mirrorPictureRect(Size displaySize, Size viewSize) {
  return aspectFit(displaySize, viewSize);
}

// The global point at the relative position `relative` of a display with `bounds`.
Point globalPoint(Rect displayBounds, Point relative);

// The relative position of the global point `global` within `bounds` (not clamped).
Point relativePoint(Rect displayBounds, Point global);

// The view point at the relative position `relative` of the picture.
Point viewPoint(Rect picture, Point relative);

struct CursorSample {
  Size imageSize;  // in display pixels
  Point hotSpot;   // from the image's top-left corner
  Point position;  // global
};

// Where the cursor image is drawn on a mirror view of `viewSize` showing the display at
// `displayBounds`: its hot spot on the pointer's spot of the picture, its size that of the real
// cursor times `scale`. nullopt when the pointer is not on that display.
std::optional<Rect> cursorFrame(Rect displayBounds, Size viewSize, const CursorSample& cursor,
                                double scale = cursorScale);

}  // namespace orlet
