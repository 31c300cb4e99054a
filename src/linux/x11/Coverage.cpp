#include "linux/x11/Coverage.h"

#include <algorithm>

namespace orlet::x11 {
namespace {

bool overlaps(const Rect& a, const Rect& b) {
  return a.minX() < b.maxX() && b.minX() < a.maxX() && a.minY() < b.maxY() && b.minY() < a.maxY();
}

// `piece` minus `cover`: up to four bands, full-width above and below, side pieces between.
void subtract(const Rect& piece, const Rect& cover, std::vector<Rect>& out) {
  if (!overlaps(piece, cover)) {
    out.push_back(piece);
    return;
  }
  const double top = std::max(piece.minY(), cover.minY());
  const double bottom = std::min(piece.maxY(), cover.maxY());
  auto add = [&out](Rect r) {
    if (!r.isEmpty()) out.push_back(r);
  };
  add({piece.x, piece.y, piece.width, top - piece.y});
  add({piece.x, bottom, piece.width, piece.maxY() - bottom});
  add({piece.x, top, cover.minX() - piece.x, bottom - top});
  add({cover.maxX(), top, piece.maxX() - cover.maxX(), bottom - top});
}

}  // namespace

std::vector<Rect> uncoveredParts(Rect target, const std::vector<Rect>& covers) {
  std::vector<Rect> pieces;
  if (!target.isEmpty()) pieces.push_back(target);
  for (const auto& cover : covers) {
    std::vector<Rect> next;
    for (const auto& piece : pieces) subtract(piece, cover, next);
    pieces = std::move(next);
    if (pieces.empty()) break;
  }
  return pieces;
}

}  // namespace orlet::x11
