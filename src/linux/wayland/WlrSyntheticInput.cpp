#include "linux/wayland/WlrSyntheticInput.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ostream>
#include <utility>

#include "wlr-virtual-pointer-unstable-v1-client.h"

namespace orlet::wayland {
namespace {

std::uint32_t milliseconds() {
  using namespace std::chrono;
  return static_cast<std::uint32_t>(
      duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

WlrSyntheticInput::WlrSyntheticInput(WaylandConnection& connection, std::ostream& diagnostics)
    : connection_(connection), diagnostics_(diagnostics) {
  auto* manager = static_cast<zwlr_virtual_pointer_manager_v1*>(
      connection_.bind(zwlr_virtual_pointer_manager_v1_interface, 2));
  if (!manager) return;
  pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, connection_.seat());
  zwlr_virtual_pointer_manager_v1_destroy(manager);  // the pointer outlives its maker
  connection_.flush();
}

WlrSyntheticInput::~WlrSyntheticInput() {
  if (pointer_) zwlr_virtual_pointer_v1_destroy(pointer_);
  connection_.flush();
}

// Absolute motion spans the compositor's whole layout, from its top-left corner.
bool WlrSyntheticInput::moveTo(Point at) {
  if (!pointer_) {
    if (!std::exchange(reportedMissing_, true)) {
      diagnostics_ << "orlet: le compositeur n'offre pas de pointeur virtuel : les clics sur le "
                      "miroir ne sont pas reproduits sur l'écran\n";
    }
    return false;
  }
  const Rect layout = connection_.layout();
  if (layout.isEmpty()) return false;
  const auto clamp = [](double v, double extent) {
    return std::lround(std::clamp(v, 0.0, extent - 1));
  };
  zwlr_virtual_pointer_v1_motion_absolute(
      pointer_, milliseconds(), static_cast<std::uint32_t>(clamp(at.x - layout.x, layout.width)),
      static_cast<std::uint32_t>(clamp(at.y - layout.y, layout.height)),
      static_cast<std::uint32_t>(layout.width), static_cast<std::uint32_t>(layout.height));
  zwlr_virtual_pointer_v1_frame(pointer_);
  return true;
}

void WlrSyntheticInput::button(bool pressed, Point at) {
  if (!moveTo(at)) return;
  zwlr_virtual_pointer_v1_button(
      pointer_, milliseconds(), BTN_LEFT,
      pressed ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
  zwlr_virtual_pointer_v1_frame(pointer_);
  connection_.flush();
}

void WlrSyntheticInput::leftButtonDown(Point at) {
  button(true, at);
}

void WlrSyntheticInput::leftButtonUp(Point at) {
  button(false, at);
}

void WlrSyntheticInput::warpPointer(Point at, std::optional<Rect>) {
  if (moveTo(at)) connection_.flush();
}

}  // namespace orlet::wayland
