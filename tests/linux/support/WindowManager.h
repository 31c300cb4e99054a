#pragma once

#include <string>

namespace orlet::x11test {

// What the session's window manager ($ORLET_TEST_WM, openbox unless set) does differently from
// openbox, for the tests to expect ORLET's fallback there instead of the behaviour it cannot
// give.
struct WindowManagerTraits {
  std::string name;
  // Honours _NET_RESTACK_WINDOW with a sibling. Where not (xfwm4 lacks it, Mutter ignores it),
  // a pinned mirror is kept above while the editor is in front and left behind whichever
  // application comes forward, not directly above the editor; and a window another program
  // raises is made the active one.
  bool restacksAboveSibling = true;
  // Puts a new window where it asks to be. Where not, a saved place on the second display comes
  // back on the first (xfwm4) or moved inwards (Mutter), and ORLET's windows stay where the
  // window manager put them.
  bool placesWhereAsked = true;
  // Always composites (Mutter): the screen read back is the compositor's picture, without the
  // drawn cursor, and a window dragged by its background is moved by the compositor, not by the
  // drag the test replays.
  bool composites = false;
  // Tiles a window dragged against a display's edge (KWin, metacity).
  bool tilesAtEdges = false;
};

// The traits of the window manager this test session runs.
const WindowManagerTraits& sessionWindowManager();

}  // namespace orlet::x11test
