#pragma once

#include <chrono>
#include <optional>

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
  struct Pointer {
    Point location;
    std::uint16_t mask = 0;
  };
  Pointer queryPointer() const;

  const XConnection& x_;
  mutable Pointer last_;
  mutable std::optional<std::chrono::steady_clock::time_point> lastQuery_;
};

}  // namespace orlet::x11
