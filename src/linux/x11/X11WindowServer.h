#pragma once

#include "linux/x11/XConnection.h"
#include "platform/WindowServer.h"

namespace orlet::x11 {

// The window list and the pointer, read from the window manager's EWMH properties and the X
// server.
class X11WindowServer final : public WindowServer {
 public:
  explicit X11WindowServer(const XConnection& x) : x_(x) {}

  // _NET_CLIENT_LIST_STACKING reversed; nullopt without a window manager that keeps it.
  std::optional<std::vector<WindowInfo>> onScreenWindows() const override;
  Point pointerLocation() const override;
  std::uint32_t pressedMouseButtons() const override;

 private:
  const XConnection& x_;
};

}  // namespace orlet::x11
