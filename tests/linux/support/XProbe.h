#pragma once

#include <sys/types.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orlet::x11test {

struct WindowRect {
  int x = 0, y = 0, width = 0, height = 0;  // root coordinates, decorations excluded
  bool operator==(const WindowRect&) const = default;
};

// A client of its own on the test's X server: reads what the server and the window manager say,
// independently of the code under test, and draws on the screen as another application would.
// Its windows go away with its connection.
class XProbe {
 public:
  // `display`: empty for $DISPLAY.
  explicit XProbe(const std::string& display = {});
  XProbe(const XProbe&) = delete;
  XProbe& operator=(const XProbe&) = delete;
  ~XProbe();

  xcb_ewmh_connection_t& ewmh() { return ewmh_; }

  xcb_window_t activeWindow();
  // The window with the X keyboard focus (what a key press goes to), whatever the WM says.
  xcb_window_t inputFocus();
  std::vector<xcb_window_t> clientList();
  // _NET_CLIENT_LIST_STACKING, bottom to top, keeping only windows the user sees: viewable, not
  // minimised, not docks.
  std::vector<xcb_window_t> visibleStacking();
  // Top-level windows that `pid` owns, mapped or not.
  std::vector<xcb_window_t> topLevelsOf(pid_t pid);
  // Windows anywhere below `ancestor` that `pid` owns.
  std::vector<xcb_window_t> descendantsOf(xcb_window_t ancestor, pid_t pid);
  // The tray host's panel: the dock window among the managed ones.
  std::optional<xcb_window_t> trayPanel();

  // Whether a window manager may give `window` the keyboard focus: its WM_HINTS input field, or
  // WM_TAKE_FOCUS among its WM_PROTOCOLS (ICCCM 4.1.7).
  bool acceptsFocus(xcb_window_t window);
  bool isViewable(xcb_window_t window);
  bool isOverrideRedirect(xcb_window_t window);
  bool hasState(xcb_window_t window, xcb_atom_t state);
  std::optional<std::uint32_t> desktop(xcb_window_t window);
  WindowRect rect(xcb_window_t window);  // empty when the window is gone
  // `r` lies wholly on one display (RandR monitor), as a window manager that places windows
  // itself keeps them.
  bool withinOneDisplay(const WindowRect& r);
  // Where the pointer is, in root coordinates.
  std::pair<int, int> pointer();

  // An unmanaged window filled with `rgb` (0xRRGGBB), kept below every other window.
  xcb_window_t paint(const WindowRect& r, std::uint32_t rgb);
  void fill(xcb_window_t window, const WindowRect& r, std::uint32_t rgb);
  // The screen's pixels in root rectangle `r` as 0xRRGGBB, row by row (zeros if unreadable);
  // with `window`, what that window drew in `r`, in its own coordinates, whatever is on screen.
  std::vector<std::uint32_t> pixels(const WindowRect& r, xcb_window_t window = XCB_NONE);
  std::uint32_t pixel(int x, int y) { return pixels({x, y, 1, 1}).front(); }
  // Raises `window` to the top of its layer as a pager asks it (_NET_RESTACK_WINDOW), which
  // metacity honours where it refuses an application's own raise while another is active; with
  // a window manager that lacks it (xfwm4), as the application itself asks.
  void raise(xcb_window_t window);
  // Input as the user's hands give it, through XTEST from this connection, and handled by the
  // server by the time these return: cheaper than a tool's process when a test gives thousands.
  // `keysyms` are pressed in order and released in reverse (Control_L then k: control+k).
  void press(std::initializer_list<std::uint32_t> keysyms);
  void click(int x, int y, int button = 1);
  // Makes `window` the active one as a taskbar or pager asks it (_NET_ACTIVE_WINDOW), with the
  // time of the user's action: a window manager that prevents focus stealing weighs that time
  // against the other windows' (xdotool sends none).
  void activate(xcb_window_t window);
  // Grabs the key typing `keysym` under exactly `modifiers` on the root window, as another
  // program's global shortcut would; false when the server refuses.
  bool grabKey(std::uint32_t keysym, std::uint16_t modifiers);

  // What the X clients of process `pid` own on the server (XRes): how many resources, and the
  // bytes of their pixmaps; zeros when it has no client or the server lacks the extension.
  struct ClientResources {
    long count = 0;
    long pixmapBytes = 0;
  };
  ClientResources clientResources(pid_t pid);

  // The RandR output named `name` (a connector such as DUMMY1), XCB_NONE if there is none.
  xcb_randr_output_t output(const std::string& name);
  // Replaces (or creates) a byte-array output property; throws when the server refuses.
  void setOutputBytes(xcb_randr_output_t output, const std::string& name,
                      const std::vector<std::uint8_t>& bytes);

 private:
  // The root visual's pixel value of a colour, and back.
  std::uint32_t toPixel(std::uint32_t rgb) const;
  std::uint32_t fromPixel(std::uint32_t pixel) const;
  std::vector<xcb_window_t> children(xcb_window_t parent);
  std::vector<std::uint32_t> property(xcb_window_t window, xcb_atom_t name);
  xcb_atom_t atom(const std::string& name);
  bool has(xcb_window_t window, xcb_atom_t name, xcb_atom_t value);
  bool isDock(xcb_window_t window);
  std::optional<pid_t> pidOf(xcb_window_t window);
  void sync();
  // The keys that type `keysym` in the current keymap; empty when none does.
  std::vector<xcb_keycode_t> keycodesOf(std::uint32_t keysym);
  // The server's time now: what an input event would carry.
  xcb_timestamp_t serverTime();

  xcb_connection_t* c_;
  xcb_ewmh_connection_t ewmh_{};
  xcb_screen_t* screen_ = nullptr;
  xcb_window_t clock_ = XCB_NONE;  // whose property changes tell the server's time
};

}  // namespace orlet::x11test
