#include "linux/x11/X11PanelWindow.h"

#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <vector>

#include "linux/x11/ClientWindows.h"

namespace orlet::x11 {
namespace {

constexpr std::uint32_t allDesktopsValue = 0xFFFFFFFF;

// Windows that share a layer with ours and that the user sees: the ones whose order relative
// to ours matters.
bool sharesLayer(const ClientWindow& w, bool above) {
  return isOnScreen(w) && w.above == above && !w.below;
}

}  // namespace

void X11PanelWindow::refuseFocus() {
  auto* c = x_.get();
  const auto wmProtocols = x_.ewmh().WM_PROTOCOLS;
  const auto takeFocus = x_.atom("WM_TAKE_FOCUS");
  xcb_icccm_get_wm_protocols_reply_t protocols;
  std::vector<xcb_atom_t> kept;
  if (xcb_icccm_get_wm_protocols_reply(c, xcb_icccm_get_wm_protocols(c, window_, wmProtocols),
                                       &protocols, nullptr)) {
    std::copy_if(protocols.atoms, protocols.atoms + protocols.atoms_len, std::back_inserter(kept),
                 [takeFocus](xcb_atom_t a) { return a != takeFocus; });
    xcb_icccm_get_wm_protocols_reply_wipe(&protocols);
  }
  xcb_icccm_set_wm_protocols(c, window_, wmProtocols, static_cast<std::uint32_t>(kept.size()),
                             kept.data());
  xcb_icccm_wm_hints_t hints{};
  if (!xcb_icccm_get_wm_hints_reply(c, xcb_icccm_get_wm_hints(c, window_), &hints, nullptr)) {
    hints = {};
  }
  xcb_icccm_wm_hints_set_input(&hints, 0);
  xcb_icccm_set_wm_hints(c, window_, &hints);
  x_.flush();
}

void X11PanelWindow::prepareForMap(bool above, bool allDesktops) {
  auto& ewmh = x_.ewmh();
  std::vector<xcb_atom_t> state{ewmh._NET_WM_STATE_SKIP_TASKBAR, ewmh._NET_WM_STATE_SKIP_PAGER};
  if (allDesktops) state.push_back(ewmh._NET_WM_STATE_STICKY);
  if (above) state.push_back(ewmh._NET_WM_STATE_ABOVE);
  xcb_ewmh_set_wm_state(&ewmh, window_, static_cast<std::uint32_t>(state.size()), state.data());
  if (allDesktops) xcb_ewmh_set_wm_desktop(&ewmh, window_, allDesktopsValue);
  above_ = above;
}

void X11PanelWindow::setAbove(bool above) {
  auto& ewmh = x_.ewmh();
  xcb_ewmh_request_change_wm_state(
      &ewmh, x_.screenNumber(), window_, above ? XCB_EWMH_WM_STATE_ADD : XCB_EWMH_WM_STATE_REMOVE,
      ewmh._NET_WM_STATE_ABOVE, XCB_ATOM_NONE, XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER);
  above_ = above;
  x_.flush();
}

void X11PanelWindow::raise() {
  restack(window_, XCB_NONE, XCB_STACK_MODE_ABOVE, x_.hasWindowManager());
  x_.flush();
}

void X11PanelWindow::lower() {
  restack(window_, XCB_NONE, XCB_STACK_MODE_BELOW, x_.hasWindowManager());
  x_.flush();
}

// openbox handles _NET_RESTACK_WINDOW (and a ConfigureRequest) with a sibling as a plain raise
// to the top of the layer (stacking_restack_request ignores the sibling for Above). So after
// asking for "above the sibling", the windows that were above the sibling in our layer are
// raised again, bottom to top, each above the previous one: the order the user sees is kept
// and we end up directly above the sibling with any window manager.
void X11PanelWindow::restackAbove(xcb_window_t sibling) {
  const auto windows =
      readClientWindows(x_, clientListStacking(x_).value_or(std::vector<xcb_window_t>{}));
  const auto siblingAt = std::find_if(windows.begin(), windows.end(),
                                      [&](const ClientWindow& w) { return w.window == sibling; });
  if (siblingAt == windows.end()) return raise();
  std::vector<xcb_window_t> over;
  bool selfDirectlyAbove = false;
  for (auto it = siblingAt + 1; it != windows.end(); ++it) {
    if (it->window == window_) {
      selfDirectlyAbove = over.empty();
    } else if (sharesLayer(*it, above_)) {
      over.push_back(it->window);
    }
  }
  if (selfDirectlyAbove) return;
  const bool viaWindowManager = x_.hasWindowManager();
  restack(window_, sibling, XCB_STACK_MODE_ABOVE, viaWindowManager);
  xcb_window_t previous = window_;
  for (auto w : over) {
    restack(w, previous, XCB_STACK_MODE_ABOVE, viaWindowManager);
    previous = w;
  }
  x_.flush();
}

// A window manager without _NET_RESTACK_WINDOW (xfwm4) drops that message: it gets the plain
// ConfigureWindow, which it intercepts as a ConfigureRequest (ICCCM 4.1.5); without one, the
// request goes straight to the server.
void X11PanelWindow::restack(xcb_window_t window, xcb_window_t sibling, xcb_stack_mode_t mode,
                             bool viaWindowManager) {
  if (viaWindowManager && windowManagerRestacks()) {
    xcb_ewmh_request_restack_window(&x_.ewmh(), x_.screenNumber(), window, sibling, mode);
    return;
  }
  const std::uint32_t values[] = {sibling, static_cast<std::uint32_t>(mode)};
  if (sibling == XCB_NONE) {
    xcb_configure_window(x_.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &values[1]);
  } else {
    xcb_discard_reply(
        x_.get(),
        xcb_configure_window_checked(
            x_.get(), window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values)
            .sequence);
  }
}

void X11PanelWindow::cancelMoveResize() {
  xcb_ewmh_request_wm_moveresize(&x_.ewmh(), x_.screenNumber(), window_, 0, 0,
                                 XCB_EWMH_WM_MOVERESIZE_CANCEL, XCB_BUTTON_INDEX_1,
                                 XCB_EWMH_CLIENT_SOURCE_TYPE_NORMAL);
  x_.flush();
}

bool X11PanelWindow::windowManagerRestacks() const {
  auto& ewmh = x_.ewmh();
  const auto supported = readCardinals(x_, x_.root(), ewmh._NET_SUPPORTED, XCB_ATOM_ATOM);
  return std::find(supported.begin(), supported.end(), ewmh._NET_RESTACK_WINDOW) != supported.end();
}

bool X11PanelWindow::isHidden() const {
  auto& ewmh = x_.ewmh();
  const auto state = readCardinals(x_, window_, ewmh._NET_WM_STATE, XCB_ATOM_ATOM);
  return std::find(state.begin(), state.end(), ewmh._NET_WM_STATE_HIDDEN) != state.end();
}

}  // namespace orlet::x11
