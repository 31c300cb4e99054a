#pragma once

#include <ostream>

#include "foundation/Geometry.h"

namespace orlet {

// Readable failure messages for geometry values in GoogleTest assertions.
void PrintTo(const Point& point, std::ostream* out);
void PrintTo(const Size& size, std::ostream* out);
void PrintTo(const Rect& rect, std::ostream* out);

}  // namespace orlet
