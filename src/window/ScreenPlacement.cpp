#include "window/ScreenPlacement.h"

#include <algorithm>

namespace orlet {

bool liesOnAScreen(const Rect& frame, const std::vector<ScreenArea>& screens) {
  if (screens.empty()) return true;
  const Point centre{frame.midX(), frame.midY()};
  return std::ranges::any_of(screens,
                             [centre](const ScreenArea& s) { return s.frame.contains(centre); });
}

std::optional<Point> mainScreenCorner(const std::vector<ScreenArea>& screens) {
  if (screens.empty()) return std::nullopt;
  const auto main = std::ranges::find_if(screens, &ScreenArea::isMain);
  const auto& screen = main == screens.end() ? screens.front() : *main;
  const auto& area = screen.visibleFrame.isEmpty() ? screen.frame : screen.visibleFrame;
  return area.origin();
}

}  // namespace orlet
