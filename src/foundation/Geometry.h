#pragma once

#include <cmath>

namespace orlet {

// One coordinate system everywhere: origin at the top-left of the virtual desktop, x to the
// right, y downwards, in device pixels.
struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;
  bool isEmpty() const { return !(width > 0) || !(height > 0); }
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  static Rect from(Point origin, Size size) {
    return {origin.x, origin.y, size.width, size.height};
  }

  double minX() const { return x; }
  double minY() const { return y; }
  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  double midX() const { return x + width / 2; }
  double midY() const { return y + height / 2; }
  Point origin() const { return {x, y}; }
  Size size() const { return {width, height}; }
  bool isEmpty() const { return size().isEmpty(); }

  // Half-open: a point on the right or bottom edge coordinate is outside.
  bool contains(Point p) const {
    return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

inline double distance(Point a, Point b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

// The rectangle a picture of `content` occupies when aspect-fitted and centred in a view of
// `container` size, in the view's own coordinates: full width when the view is relatively taller
// than the picture, full height when it is relatively wider, the whole view when equal. Every
// view that maps between the miniature and the display uses this one rule. Empty when either
// size is empty.
Rect aspectFit(Size content, Size container);

// Converts between the global top-left/y-down system and a bottom-left/y-up ("native") one whose
// reference screen is `referenceHeight` tall: y' = H - y - h. The conversion is its own inverse.
Point flipped(Point p, double referenceHeight);
Rect flipped(Rect r, double referenceHeight);

}  // namespace orlet
