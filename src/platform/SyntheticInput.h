#pragma once

#include <optional>

#include "foundation/Geometry.h"

namespace orlet {

// Input made up by the program, delivered as if the user's own devices had produced it. All
// points are global coordinates.
class SyntheticInput {
 public:
  virtual ~SyntheticInput() = default;

  // Moves the pointer to `at` and presses the left button there; silently dropped when the
  // desktop refuses synthetic input.
  virtual void leftButtonDown(Point at) = 0;

  // Moves the pointer to `at` and releases the left button there; silently dropped when refused.
  virtual void leftButtonUp(Point at) = 0;

  // Puts the pointer at `at` without pressing anything; the pointer keeps following the mouse
  // from there. With `onlyFrom`, the desktop moves it only if it is still inside that rectangle
  // when the warp is carried out: a pointer the user has moved on since it was read stays where
  // the user put it.
  virtual void warpPointer(Point at, std::optional<Rect> onlyFrom) = 0;
};

}  // namespace orlet
