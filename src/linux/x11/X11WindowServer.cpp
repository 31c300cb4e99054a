#include "linux/x11/X11WindowServer.h"

#include <cstdlib>
#include <memory>

#include <xcb/xinput.h>

#include "linux/x11/ClientWindows.h"
#include "linux/x11/ScreenAreas.h"

namespace orlet::x11 {

namespace {

using std::chrono::milliseconds;

// The cursor tracking and the crossing sample on timers that fire together: one round trip
// serves both even while the pointer moves.
constexpr milliseconds kSameSample{4};
// With no input since the last reading, it stands this long: a little less than the samplers'
// still interval (a second), so that each still sample reads the server anew even when its
// coarse timer fires a little early.
constexpr milliseconds kLongestQuiet{900};

constexpr std::uint32_t kPointerInput = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                                        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                                        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;

// Raw events, and the toolkit's own pointer events on our windows: the server sends no raw
// motion for an absolute move (a test's, or a program's through XTEST), but a pointer moving
// into the mirror still reports itself there.
bool isPointerInput(const xcb_generic_event_t& event, std::uint8_t xinputOpcode) {
  switch (event.response_type & 0x7f) {
    case XCB_MOTION_NOTIFY:
    case XCB_ENTER_NOTIFY:
      return true;
    case XCB_GE_GENERIC:
      break;
    default:
      return false;
  }
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (generic.extension != xinputOpcode) return false;
  switch (generic.event_type) {
    case XCB_INPUT_RAW_MOTION:
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_BUTTON_RELEASE:
    case XCB_INPUT_MOTION:
    case XCB_INPUT_ENTER:
      return true;
    default:
      return false;
  }
}

}  // namespace

X11WindowServer::X11WindowServer(const XConnection& x, XEventSource& events)
    : x_(x), xinputOpcode_(x.xinputOpcode()) {
  if (xinputOpcode_ != 0) {
    events_ = events.subscribe([this](const xcb_generic_event_t& e) { handle(e); });
  }
}

// One event is all it takes to know the reading is stale: the selection is dropped at once, so
// a fast mouse does not wake us for every report of its motion.
void X11WindowServer::handle(const xcb_generic_event_t& event) {
  if (!isPointerInput(event, xinputOpcode_) || !watching_) return;
  watching_ = false;
  watch(false);
  inputObservers_.call();
}

void X11WindowServer::watch(bool on) const {
  x_.selectRootInput(kPointerInput, on);
}

X11WindowServer::Pointer X11WindowServer::queryPointer() const {
  const auto now = std::chrono::steady_clock::now();
  const auto age = lastQuery_ ? now - *lastQuery_ : std::chrono::steady_clock::duration::max();
  if (age < (watching_ ? milliseconds(kLongestQuiet) : kSameSample)) return last_;
  // Selected before the query: input the server handles after the reading is seen. A selection
  // still standing from the last reading is not asked for again.
  if (xinputOpcode_ != 0 && !watching_) watch(true);
  auto* reply = xcb_query_pointer_reply(x_.get(), xcb_query_pointer(x_.get(), x_.root()), nullptr);
  if (!reply) return {};
  const Pointer reading{{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)},
                        reply->mask};
  std::free(reply);
  const bool moved = lastQuery_ && reading != last_;
  last_ = reading;
  lastQuery_ = now;
  watching_ = xinputOpcode_ != 0;
  if (moved) inputObservers_.call();
  return last_;
}

std::optional<std::vector<WindowInfo>> X11WindowServer::onScreenWindows() const {
  const auto stacking = clientListStacking(x_);
  if (!stacking) return std::nullopt;
  std::vector<WindowInfo> list;
  const auto windows = readClientWindows(x_, *stacking);
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    if (isOnScreen(*it)) list.push_back({it->pid, it->window, it->frame});
  }
  return list;
}

Point X11WindowServer::pointerLocation() const {
  return queryPointer().location;
}

// The core protocol's key-and-button mask (Button1Mask = left, Button2Mask = middle,
// Button3Mask = right) in the port's order: left, right, middle.
std::uint32_t X11WindowServer::pressedMouseButtons() const {
  const auto mask = queryPointer().mask;
  std::uint32_t buttons = 0;
  if (mask & XCB_BUTTON_MASK_1) buttons |= mouse_button::left;
  if (mask & XCB_BUTTON_MASK_3) buttons |= mouse_button::right;
  if (mask & XCB_BUTTON_MASK_2) buttons |= mouse_button::middle;
  return buttons;
}

std::vector<ScreenArea> X11WindowServer::screens() const {
  return readScreenAreas(x_);
}

}  // namespace orlet::x11
