#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlet::x11 {

// An XCB connection with the EWMH atoms interned. Either owned (opened here) or borrowed from
// the toolkit, whose connection the panels' windows live on: requests about those windows go
// through the same connection so that they reach the server in the order they were made.
class XConnection {
 public:
  // Opens `display` (nullptr: $DISPLAY). On failure returns nullptr and says why in `error`.
  static std::unique_ptr<XConnection> open(const char* display, std::string* error);
  // Uses a connection someone else owns and will close.
  static std::unique_ptr<XConnection> borrow(xcb_connection_t* connection, int screen);

  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;
  ~XConnection();

  xcb_connection_t* get() const { return connection_; }
  // xcb-ewmh takes a non-const pointer even for requests that change nothing.
  xcb_ewmh_connection_t& ewmh() const { return ewmh_; }
  int screenNumber() const { return screenNumber_; }
  xcb_window_t root() const { return root_; }

  // Interns `name` once (ICCCM and other atoms xcb-ewmh does not cover).
  xcb_atom_t atom(const std::string& name) const;

  // Waits for a checked void request; false when the server answered with an error (for a
  // foreign window: BadWindow or BadMatch mean it is gone, not a fault of ours).
  bool check(xcb_void_cookie_t cookie) const;

  // A compliant window manager is running (_NET_SUPPORTING_WM_CHECK, EWMH "Root Window
  // Properties"): restacking and activation go through it with client messages.
  bool hasWindowManager() const;

  void flush() const { xcb_flush(connection_); }

  // The XInput extension's major opcode, 0 when the server lacks it.
  std::uint8_t xinputOpcode() const;

 private:
  XConnection(xcb_connection_t* connection, int screen, bool owned);
  bool initialise();

  xcb_connection_t* connection_;
  int screenNumber_;
  bool owned_;
  bool ewmhReady_ = false;
  mutable xcb_ewmh_connection_t ewmh_{};
  xcb_window_t root_ = XCB_NONE;
  mutable std::map<std::string, xcb_atom_t> atoms_;
};

// Reads a 32-bit property (CARDINAL, WINDOW, ATOM) of `window`; empty when absent or the window
// is gone.
std::vector<std::uint32_t> readCardinals(const XConnection& x, xcb_window_t window,
                                         xcb_atom_t property, xcb_atom_t type);

}  // namespace orlet::x11
