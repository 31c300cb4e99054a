#include "linux/x11/XEventSource.h"

#include <xcb/xinput.h>

namespace orlet::x11 {
namespace {

// Response types with the "sent by SendEvent" bit cleared.
std::uint8_t kindOf(const xcb_generic_event_t& event) {
  return event.response_type & 0x7f;
}

bool isXInputUserEvent(std::uint16_t type) {
  switch (type) {
    case XCB_INPUT_KEY_PRESS:
    case XCB_INPUT_KEY_RELEASE:
    case XCB_INPUT_BUTTON_PRESS:
    case XCB_INPUT_BUTTON_RELEASE:
    case XCB_INPUT_RAW_KEY_PRESS:
    case XCB_INPUT_RAW_KEY_RELEASE:
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_BUTTON_RELEASE:
      return true;
    default:
      return false;
  }
}

}  // namespace

XEventSource::XEventSource(std::uint8_t xinputOpcode) : xinputOpcode_(xinputOpcode) {}

void XEventSource::dispatch(const xcb_generic_event_t& event) {
  recordTime(event);
  handlers_.call(event);
}

void XEventSource::noteUserTime(xcb_timestamp_t time) {
  if (time == XCB_CURRENT_TIME) return;
  // Server time wraps around after 49 days: compare by signed difference.
  const auto ahead = static_cast<std::int32_t>(time - lastUserTime_);
  if (lastUserTime_ == XCB_CURRENT_TIME || ahead > 0) lastUserTime_ = time;
}

void XEventSource::recordTime(const xcb_generic_event_t& event) {
  switch (kindOf(event)) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
      // Same layout for the four core input events.
      noteUserTime(reinterpret_cast<const xcb_button_press_event_t&>(event).time);
      return;
    case XCB_GE_GENERIC: {
      const auto& ge = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
      if (xinputOpcode_ == 0 || ge.extension != xinputOpcode_ || !isXInputUserEvent(ge.event_type))
        return;
      // XI2 device and raw events share their header up to the time field.
      noteUserTime(reinterpret_cast<const xcb_input_button_press_event_t&>(event).time);
      return;
    }
    default:
      return;
  }
}

}  // namespace orlet::x11
