#include "linux/x11/X11SyntheticInput.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <utility>

#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

// The pixel a global point falls in; X coordinates are 16-bit.
std::int16_t pixel(double coordinate) {
  constexpr double lowest = std::numeric_limits<std::int16_t>::min();
  constexpr double highest = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::clamp(std::floor(coordinate), lowest, highest));
}

constexpr std::uint8_t kLeftButton = 1;

}  // namespace

X11SyntheticInput::X11SyntheticInput(const XConnection& x, std::ostream& diagnostics,
                                     std::function<void()> warped)
    : x_(x), diagnostics_(diagnostics), warped_(std::move(warped)) {
  auto* c = x_.get();
  const auto* extension = xcb_get_extension_data(c, &xcb_test_id);
  if (extension && extension->present) {
    hasXTest_ = waitReply<xcb_test_get_version_reply_t>(c, xcb_test_get_version_reply,
                                                        xcb_test_get_version(c, 2, 2)) != nullptr;
  }
}

// A click replayed onto one of our own windows (the picture of the display the panel is on) would
// be replayed again from there, and again: it is dropped, its release with it.
void X11SyntheticInput::leftButtonDown(Point at) {
  pressDropped_ = landsOnOwnWindow(at);
  if (!pressDropped_) return fakeButton(XCB_BUTTON_PRESS, at);
  if (!std::exchange(reportedOwnWindow_, true)) {
    diagnostics_ << "orlet: un clic sur le miroir qui tomberait sur les fenêtres d'ORLET n'est "
                    "pas reproduit\n";
  }
}

void X11SyntheticInput::leftButtonUp(Point at) {
  if (std::exchange(pressDropped_, false)) return;
  fakeButton(XCB_BUTTON_RELEASE, at);
}

// Walks from the root down the windows that contain `at`, topmost first at each level; any of
// them created on our connection (its id in our resource range) is one of ours, frames of the
// window manager around it or not.
bool X11SyntheticInput::landsOnOwnWindow(Point at) const {
  auto* c = x_.get();
  const xcb_setup_t* setup = xcb_get_setup(c);
  xcb_window_t window = x_.root();
  for (int depth = 0; depth < 16; ++depth) {
    const auto reply = waitReply<xcb_translate_coordinates_reply_t>(
        c, xcb_translate_coordinates_reply,
        xcb_translate_coordinates(c, x_.root(), window, pixel(at.x), pixel(at.y)));
    if (!reply || reply->child == XCB_NONE) return false;
    window = reply->child;
    if ((window & ~setup->resource_id_mask) == setup->resource_id_base) return true;
  }
  return false;
}

// The motion first: XTEST presses where the pointer is, and the click must land at `at` even
// when the pointer was elsewhere. The pointer then stays there, as after a real click.
void X11SyntheticInput::fakeButton(std::uint8_t type, Point at) {
  if (!hasXTest_) {
    if (!std::exchange(reportedMissing_, true)) {
      diagnostics_ << "orlet: le serveur X n'a pas l'extension XTEST : les clics sur le miroir "
                      "ne sont pas reproduits sur l'écran\n";
    }
    return;
  }
  auto* c = x_.get();
  const auto motion = xcb_test_fake_input_checked(c, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
                                                  x_.root(), pixel(at.x), pixel(at.y), XCB_NONE);
  const auto button =
      xcb_test_fake_input_checked(c, type, kLeftButton, XCB_CURRENT_TIME, XCB_NONE, 0, 0, XCB_NONE);
  x_.check(motion);
  x_.check(button);
}

// WarpPointer to the root's coordinates; the server reports it to clients as ordinary motion and
// nothing else. With the root as source window, the server itself checks that the pointer is
// still in the source rectangle, in the same step as the move: no reading of ours can be late.
void X11SyntheticInput::warpPointer(Point at, std::optional<Rect> onlyFrom) {
  auto* c = x_.get();
  xcb_window_t source = XCB_NONE;
  std::int16_t left = 0, top = 0;
  std::uint16_t width = 0, height = 0;  // zero would mean "to the window's edge"
  if (onlyFrom) {
    if (onlyFrom->isEmpty()) return;
    source = x_.root();
    left = pixel(onlyFrom->minX());
    top = pixel(onlyFrom->minY());
    // The server counts the far edge in: the last pixel inside is the one before it.
    width = std::uint16_t(std::max(int(std::ceil(onlyFrom->maxX())) - 1 - left, 1));
    height = std::uint16_t(std::max(int(std::ceil(onlyFrom->maxY())) - 1 - top, 1));
  }
  x_.check(xcb_warp_pointer_checked(c, source, x_.root(), left, top, width, height, pixel(at.x),
                                    pixel(at.y)));
  if (warped_) warped_();
}

}  // namespace orlet::x11
