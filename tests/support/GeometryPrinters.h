#pragma once

#include <ostream>

#include "foundation/Geometry.h"

namespace orlet {

// Readable failure messages for geometry values in GoogleTest assertions.
inline void PrintTo(const Point& p, std::ostream* out) {
  *out << "(" << p.x << ", " << p.y << ")";
}
inline void PrintTo(const Size& s, std::ostream* out) {
  *out << s.width << " x " << s.height;
}
inline void PrintTo(const Rect& r, std::ostream* out) {
  *out << "(" << r.x << ", " << r.y << ", " << r.width << " x " << r.height << ")";
}

}  // namespace orlet
