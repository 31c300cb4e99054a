#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <optional>
#include <string>
#include <vector>

namespace orlet::x11test {

struct WindowRect {
  int x = 0, y = 0, width = 0, height = 0;  // root coordinates, decorations excluded
  bool operator==(const WindowRect&) const = default;
};

// What the tests read from the X server and the window manager, independently of the code
// under test.
class XProbe {
 public:
  explicit XProbe(const std::string& display);
  XProbe(const XProbe&) = delete;
  XProbe& operator=(const XProbe&) = delete;
  ~XProbe();

  xcb_window_t activeWindow();
  // _NET_CLIENT_LIST_STACKING, bottom to top, keeping only windows the user sees: viewable,
  // not minimised, not docks.
  std::vector<xcb_window_t> visibleStacking();
  std::vector<xcb_window_t> clientList();

  // Top-level windows that `pid` owns, mapped or not.
  std::vector<xcb_window_t> topLevelsOf(pid_t pid);
  // Windows anywhere below `ancestor` that `pid` owns.
  std::vector<xcb_window_t> descendantsOf(xcb_window_t ancestor, pid_t pid);
  // The tray host's panel: the dock window among the managed ones.
  std::optional<xcb_window_t> trayPanel();

  bool isViewable(xcb_window_t window);
  bool isOverrideRedirect(xcb_window_t window);
  bool hasState(xcb_window_t window, xcb_atom_t state);
  std::optional<std::uint32_t> desktop(xcb_window_t window);
  std::optional<WindowRect> rect(xcb_window_t window);
  std::optional<pid_t> pidOf(xcb_window_t window);

  xcb_ewmh_connection_t& ewmh() { return ewmh_; }

 private:
  std::vector<xcb_window_t> children(xcb_window_t parent);

  xcb_connection_t* c_;
  xcb_ewmh_connection_t ewmh_{};
  xcb_window_t root_ = XCB_NONE;
};

}  // namespace orlet::x11test
