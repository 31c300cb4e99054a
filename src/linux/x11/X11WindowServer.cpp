#include "linux/x11/X11WindowServer.h"

#include <cstdlib>
#include <memory>

#include "linux/x11/ClientWindows.h"

namespace orlet::x11 {

// The mirror's pointer tracking and crossing both sample the pointer sixty times a second, on
// timers that fire together: one round trip serves every question asked within a millisecond.
X11WindowServer::Pointer X11WindowServer::queryPointer() const {
  const auto now = std::chrono::steady_clock::now();
  if (lastQuery_ && now - *lastQuery_ < std::chrono::milliseconds(1)) return last_;
  auto* reply = xcb_query_pointer_reply(x_.get(), xcb_query_pointer(x_.get(), x_.root()), nullptr);
  if (!reply) return {};
  last_ = {{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)}, reply->mask};
  lastQuery_ = now;
  std::free(reply);
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

}  // namespace orlet::x11
