#include "support/GeometryPrinters.h"

namespace orlet {

void PrintTo(const Point& point, std::ostream* out) {
  *out << "(" << point.x << ", " << point.y << ")";
}

void PrintTo(const Size& size, std::ostream* out) {
  *out << size.width << " x " << size.height;
}

void PrintTo(const Rect& rect, std::ostream* out) {
  *out << "(" << rect.x << ", " << rect.y << ", " << rect.width << " x " << rect.height << ")";
}

}  // namespace orlet
