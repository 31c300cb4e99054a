#include "linux/x11/X11WindowServer.h"

#include <cstdlib>
#include <memory>

#include "linux/x11/ClientWindows.h"

namespace orlet::x11 {
namespace {

struct Pointer {
  Point location;
  std::uint16_t mask = 0;
};

Pointer queryPointer(const XConnection& x) {
  auto* reply = xcb_query_pointer_reply(x.get(), xcb_query_pointer(x.get(), x.root()), nullptr);
  if (!reply) return {};
  Pointer pointer{{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)},
                  reply->mask};
  std::free(reply);
  return pointer;
}

}  // namespace

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
  return queryPointer(x_).location;
}

// The core protocol's key-and-button mask (Button1Mask = left, Button2Mask = middle,
// Button3Mask = right) in the port's order: left, right, middle.
std::uint32_t X11WindowServer::pressedMouseButtons() const {
  const auto mask = queryPointer(x_).mask;
  std::uint32_t buttons = 0;
  if (mask & XCB_BUTTON_MASK_1) buttons |= mouse_button::left;
  if (mask & XCB_BUTTON_MASK_3) buttons |= mouse_button::right;
  if (mask & XCB_BUTTON_MASK_2) buttons |= mouse_button::middle;
  return buttons;
}

}  // namespace orlet::x11
