#include "WindowManager.h"

#include <array>
#include <cstdlib>

namespace orlet::x11test {

const WindowManagerTraits& sessionWindowManager() {
  // name, restacks above a sibling, places where asked, composites, tiles at edges
  static const std::array<WindowManagerTraits, 6> known{{
      {"openbox", true, true, false, false},
      {"kwin", true, true, false, true},
      {"metacity", true, true, false, true},
      {"xfwm4", false, false, false, false},
      {"xfwm4-compositor", false, false, true, false},
      {"mutter", false, false, true, false},
  }};
  const char* wm = std::getenv("ORLET_TEST_WM");
  const std::string name = wm && *wm ? wm : "openbox";
  for (const auto& traits : known) {
    if (traits.name == name) return traits;
  }
  static const WindowManagerTraits unknown{name};
  return unknown;
}

}  // namespace orlet::x11test
