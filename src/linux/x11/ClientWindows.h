#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Geometry.h"
#include "linux/x11/XConnection.h"
#include "platform/Workspace.h"

namespace orlet::x11 {

// What the window list needs to know about one managed (client) window.
struct ClientWindow {
  xcb_window_t window = XCB_NONE;
  ProcessId pid = 0;  // _NET_WM_PID; 0 when the client does not say
  bool viewable = false;
  bool hidden = false;           // _NET_WM_STATE_HIDDEN: minimised or shaded away
  bool above = false;            // _NET_WM_STATE_ABOVE: the window manager's upper layer
  bool below = false;            // _NET_WM_STATE_BELOW
  bool desktopOrDock = false;    // _NET_WM_WINDOW_TYPE_DESKTOP or _DOCK
  bool onCurrentDesktop = true;  // or sticky; true when the client has no desktop
  Rect frame;                    // root coordinates, decorations included
};

// Shown to the user now: mapped, not minimised, on the current desktop, and not part of the
// desktop's own furniture.
inline bool isOnScreen(const ClientWindow& w) {
  return w.viewable && !w.hidden && w.onCurrentDesktop && !w.desktopOrDock;
}

// _NET_CLIENT_LIST_STACKING, bottom to top; nullopt when no window manager keeps it.
std::optional<std::vector<xcb_window_t>> clientListStacking(const XConnection& x);
// _NET_CLIENT_LIST, in the order the clients were first managed.
std::vector<xcb_window_t> clientList(const XConnection& x);
// _NET_ACTIVE_WINDOW; XCB_NONE when no window is active.
xcb_window_t activeWindow(const XConnection& x);

// Reads `windows`, sending every request before waiting for any reply (one round trip for the
// whole list). Windows destroyed in the meantime are left out; the order is kept.
std::vector<ClientWindow> readClientWindows(const XConnection& x,
                                            const std::vector<xcb_window_t>& windows);

// WM_CLASS (ICCCM 4.1.2.5) and the owner of one window.
struct ClientIdentity {
  xcb_window_t window = XCB_NONE;
  ProcessId pid = 0;
  std::string instance;   // WM_CLASS res_name
  std::string className;  // WM_CLASS res_class
};

// Same batching as readClientWindows.
std::vector<ClientIdentity> readIdentities(const XConnection& x,
                                           const std::vector<xcb_window_t>& windows);

}  // namespace orlet::x11
