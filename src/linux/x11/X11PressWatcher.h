#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <optional>

#include "foundation/Geometry.h"

namespace orlet::x11 {

// Every press of a pointer button on the display, in whichever application it lands, seen
// without grabbing the pointer or taking the focus: XInput 2 raw button events on the root
// window. They are read on a connection of its own, whose event selection never replaces the
// toolkit's or the keyboard hook's on the shared one.
class X11PressWatcher {
 public:
  // nullptr when the display cannot be opened or lacks XInput 2.1 (raw events despite grabs).
  static std::unique_ptr<X11PressWatcher> open(const char* display = nullptr);
  X11PressWatcher(const X11PressWatcher&) = delete;
  X11PressWatcher& operator=(const X11PressWatcher&) = delete;
  ~X11PressWatcher();

  // Readable when events arrived: for the event loop's socket notifier.
  int fileDescriptor() const;
  // Reads what arrived; where the pointer is (root coordinates) when a button was pressed
  // meanwhile. Wheel steps are buttons too in X, but they are no press of the user's.
  std::optional<Point> takePress();

 private:
  explicit X11PressWatcher(xcb_connection_t* connection);

  xcb_connection_t* connection_;
  xcb_window_t root_ = XCB_NONE;
};

}  // namespace orlet::x11
