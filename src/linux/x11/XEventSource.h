#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>

#include "foundation/HandlerList.h"
#include "foundation/Subscription.h"

namespace orlet::x11 {

// The X events the toolkit's event loop reads on the main thread, handed to the adapters that
// watch them. Also remembers the time stamp of the last user input, which the window manager
// wants with an activation request (EWMH _NET_ACTIVE_WINDOW, focus stealing prevention).
class XEventSource {
 public:
  using Handler = std::function<void(const xcb_generic_event_t&)>;

  // `xinputOpcode`: the XInput extension's major opcode (0 if absent); the toolkit reads the
  // pointer through XInput 2, whose events carry the user time too.
  explicit XEventSource(std::uint8_t xinputOpcode = 0);
  XEventSource(const XEventSource&) = delete;
  XEventSource& operator=(const XEventSource&) = delete;

  [[nodiscard]] Subscription subscribe(Handler handler) {
    return handlers_.add(std::move(handler));
  }

  // Called by the event loop for every event, before the toolkit handles it.
  void dispatch(const xcb_generic_event_t& event);

  // XCB_CURRENT_TIME until the first user input has been seen.
  xcb_timestamp_t lastUserTime() const { return lastUserTime_; }
  void noteUserTime(xcb_timestamp_t time);

 private:
  void recordTime(const xcb_generic_event_t& event);

  std::uint8_t xinputOpcode_;
  HandlerList<const xcb_generic_event_t&> handlers_;
  xcb_timestamp_t lastUserTime_ = XCB_CURRENT_TIME;
};

}  // namespace orlet::x11
