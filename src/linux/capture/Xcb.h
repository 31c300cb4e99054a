#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <optional>
#include <string>

#include "linux/x11/XcbReply.h"

namespace orlet::linux_capture {

template <class T>
using Reply = x11::XcbReply<T>;

// One connection to the X server, owned by one thread.
class XcbConnection {
 public:
  // Connects to `displayName` (null: $DISPLAY); null, with `error` set, when it cannot.
  static std::unique_ptr<XcbConnection> open(const char* displayName, std::string& error);
  ~XcbConnection();
  XcbConnection(const XcbConnection&) = delete;
  XcbConnection& operator=(const XcbConnection&) = delete;

  xcb_connection_t* get() const { return connection_; }
  const xcb_screen_t& screen() const { return *screen_; }
  xcb_window_t root() const { return screen_->root; }
  bool hasError() const { return xcb_connection_has_error(connection_) != 0; }

  // Waits for a checked request; the error as text, or nullopt when it succeeded.
  std::optional<std::string> check(xcb_void_cookie_t cookie, const char* what) const;

  // Whether the server has extension `name` (its first event code in `firstEvent`).
  bool hasExtension(xcb_extension_t* extension, std::uint8_t* firstEvent = nullptr) const;

 private:
  XcbConnection(xcb_connection_t* connection, const xcb_screen_t* screen)
      : connection_(connection), screen_(screen) {}
  xcb_connection_t* connection_;
  const xcb_screen_t* screen_;
};

// "what: X error <code> (major <m>, minor <n>)".
std::string describe(const char* what, const xcb_generic_error_t& error);

}  // namespace orlet::linux_capture
