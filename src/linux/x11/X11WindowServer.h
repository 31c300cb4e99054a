#pragma once

#include <chrono>
#include <optional>

#include "foundation/HandlerList.h"
#include "foundation/Subscription.h"
#include "linux/x11/XConnection.h"
#include "linux/x11/XEventSource.h"
#include "platform/WindowServer.h"

namespace orlet::x11 {

// The window list and the pointer, read from the window manager's EWMH properties and the X
// server.
//
// The mirror samples the pointer sixty times a second. While no input arrives, the last reading
// stands: after each reading the server is asked for the first raw pointer event (XInput 2), and
// only once one has come (or the toolkit's own pointer event on one of our windows, which comes
// even for an absolute move that raises no raw motion) is the pointer read again. A still pointer
// thus costs no round trip, and a moving one at most one event and one round trip a sample, however
// fast the mouse reports. Warps by other clients come with no input event: a reading is kept a
// quarter of a second at most, and a reading that finds the pointer moved tells the input's
// observers too.
class X11WindowServer final : public WindowServer {
 public:
  X11WindowServer(const XConnection& x, XEventSource& events);

  // _NET_CLIENT_LIST_STACKING reversed; nullopt without a window manager that keeps it.
  std::optional<std::vector<WindowInfo>> onScreenWindows() const override;
  std::vector<ScreenArea> screens() const override;
  Point pointerLocation() const override;
  std::uint32_t pressedMouseButtons() const override;
  // The same first raw event after a reading is what tells its observers.
  [[nodiscard]] Subscription observePointerInput(std::function<void()> observer) const override {
    return inputObservers_.add(std::move(observer));
  }
  bool reportsPointerInput() const override { return xinputOpcode_ != 0; }

  // Our own warps come with no input event either: the next reading asks the server.
  void forgetPointer() const { watching_ = false; }

 private:
  struct Pointer {
    Point location;
    std::uint16_t mask = 0;
    friend bool operator==(const Pointer&, const Pointer&) = default;
  };
  Pointer queryPointer() const;
  void watch(bool on) const;
  void handle(const xcb_generic_event_t& event);

  const XConnection& x_;
  const std::uint8_t xinputOpcode_;
  mutable Pointer last_;
  mutable std::optional<std::chrono::steady_clock::time_point> lastQuery_;
  mutable bool watching_ = false;  // no pointer input since the last reading
  mutable HandlerList<> inputObservers_;
  Subscription events_;
};

}  // namespace orlet::x11
