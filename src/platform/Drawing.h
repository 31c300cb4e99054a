#pragma once

#include <vector>

#include "foundation/Geometry.h"

namespace orlet {

struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  static constexpr Color black() { return {0, 0, 0, 1}; }
  static constexpr Color white() { return {1, 1, 1, 1}; }
  static constexpr Color clear() { return {0, 0, 0, 0}; }
  friend bool operator==(const Color&, const Color&) = default;
};

// A picture as drawing instructions, so that the logic can say exactly what an icon looks like
// and the toolkit only renders it. Coordinates are the picture's own, top-left origin.
struct DrawingCommand {
  enum class Kind { fillEllipse, fillRoundedRect, fillRect, strokeLine };
  Kind kind = Kind::fillRect;
  Rect rect;                // fills
  double cornerRadius = 0;  // fillRoundedRect
  Point from, to;           // strokeLine
  double lineWidth = 0;     // strokeLine
  Color color;
  friend bool operator==(const DrawingCommand&, const DrawingCommand&) = default;
};

struct Drawing {
  Size size;
  std::vector<DrawingCommand> commands;  // back to front
};

}  // namespace orlet
