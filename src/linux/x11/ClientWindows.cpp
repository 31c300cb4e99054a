#include "linux/x11/ClientWindows.h"

#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace orlet::x11 {
namespace {

// EWMH _NET_WM_DESKTOP: "0xFFFFFFFF indicates that the window SHOULD appear on all desktops".
constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

struct FreeDeleter {
  void operator()(void* p) const { std::free(p); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

std::vector<xcb_window_t> windowsFrom(xcb_ewmh_get_windows_reply_t& reply) {
  std::vector<xcb_window_t> windows(reply.windows, reply.windows + reply.windows_len);
  xcb_ewmh_get_windows_reply_wipe(&reply);
  return windows;
}

struct WindowCookies {
  xcb_get_window_attributes_cookie_t attributes;
  xcb_get_geometry_cookie_t geometry;
  xcb_translate_coordinates_cookie_t origin;
  xcb_get_property_cookie_t state, type, desktop, pid, extents;
};

WindowCookies request(const XConnection& x, xcb_window_t w) {
  auto* ewmh = &x.ewmh();
  return {xcb_get_window_attributes(x.get(), w),
          xcb_get_geometry(x.get(), w),
          xcb_translate_coordinates(x.get(), w, x.root(), 0, 0),
          xcb_ewmh_get_wm_state(ewmh, w),
          xcb_ewmh_get_wm_window_type(ewmh, w),
          xcb_ewmh_get_wm_desktop(ewmh, w),
          xcb_ewmh_get_wm_pid(ewmh, w),
          xcb_ewmh_get_frame_extents(ewmh, w)};
}

bool containsAtom(const xcb_ewmh_get_atoms_reply_t& atoms, xcb_atom_t atom) {
  return std::find(atoms.atoms, atoms.atoms + atoms.atoms_len, atom) !=
         atoms.atoms + atoms.atoms_len;
}

void readState(const XConnection& x, xcb_get_property_cookie_t cookie, ClientWindow& w,
               bool& sticky) {
  auto& ewmh = x.ewmh();
  xcb_ewmh_get_atoms_reply_t state;
  if (!xcb_ewmh_get_wm_state_reply(&ewmh, cookie, &state, nullptr)) return;
  w.hidden = containsAtom(state, ewmh._NET_WM_STATE_HIDDEN);
  w.above = containsAtom(state, ewmh._NET_WM_STATE_ABOVE);
  w.below = containsAtom(state, ewmh._NET_WM_STATE_BELOW);
  sticky = containsAtom(state, ewmh._NET_WM_STATE_STICKY);
  xcb_ewmh_get_atoms_reply_wipe(&state);
}

void readType(const XConnection& x, xcb_get_property_cookie_t cookie, ClientWindow& w) {
  auto& ewmh = x.ewmh();
  xcb_ewmh_get_atoms_reply_t type;
  if (!xcb_ewmh_get_wm_window_type_reply(&ewmh, cookie, &type, nullptr)) return;
  w.desktopOrDock = containsAtom(type, ewmh._NET_WM_WINDOW_TYPE_DESKTOP) ||
                    containsAtom(type, ewmh._NET_WM_WINDOW_TYPE_DOCK);
  xcb_ewmh_get_atoms_reply_wipe(&type);
}

// The client's rectangle on the root, grown by the decorations the window manager put around
// it (_NET_FRAME_EXTENTS: left, right, top, bottom).
bool readFrame(const XConnection& x, const WindowCookies& c, ClientWindow& w) {
  Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(x.get(), c.geometry, nullptr));
  Reply<xcb_translate_coordinates_reply_t> origin(
      xcb_translate_coordinates_reply(x.get(), c.origin, nullptr));
  xcb_ewmh_get_extents_reply_t extents{};
  if (!xcb_ewmh_get_frame_extents_reply(&x.ewmh(), c.extents, &extents, nullptr)) extents = {};
  if (!geometry || !origin) return false;
  w.frame = {static_cast<double>(origin->dst_x) - extents.left,
             static_cast<double>(origin->dst_y) - extents.top,
             static_cast<double>(geometry->width) + extents.left + extents.right,
             static_cast<double>(geometry->height) + extents.top + extents.bottom};
  return true;
}

std::optional<ClientWindow> collect(const XConnection& x, xcb_window_t window,
                                    const WindowCookies& c, std::uint32_t currentDesktop) {
  ClientWindow w;
  w.window = window;
  Reply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x.get(), c.attributes, nullptr));
  bool sticky = false;
  readState(x, c.state, w, sticky);
  readType(x, c.type, w);
  std::uint32_t desktop = allDesktops;
  const bool hasDesktop = xcb_ewmh_get_wm_desktop_reply(&x.ewmh(), c.desktop, &desktop, nullptr);
  w.onCurrentDesktop = !hasDesktop || sticky || desktop == allDesktops || desktop == currentDesktop;
  std::uint32_t pid = 0;
  if (xcb_ewmh_get_wm_pid_reply(&x.ewmh(), c.pid, &pid, nullptr)) {
    w.pid = static_cast<ProcessId>(pid);
  }
  const bool framed = readFrame(x, c, w);
  if (!attributes || !framed) return std::nullopt;  // destroyed since the list was read
  w.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
  return w;
}

std::uint32_t currentDesktop(const XConnection& x) {
  std::uint32_t desktop = 0;
  auto& ewmh = x.ewmh();
  if (!xcb_ewmh_get_current_desktop_reply(
          &ewmh, xcb_ewmh_get_current_desktop(&ewmh, x.screenNumber()), &desktop, nullptr)) {
    return 0;
  }
  return desktop;
}

}  // namespace

std::optional<std::vector<xcb_window_t>> clientListStacking(const XConnection& x) {
  auto& ewmh = x.ewmh();
  xcb_ewmh_get_windows_reply_t reply;
  if (!xcb_ewmh_get_client_list_stacking_reply(
          &ewmh, xcb_ewmh_get_client_list_stacking(&ewmh, x.screenNumber()), &reply, nullptr)) {
    return std::nullopt;
  }
  return windowsFrom(reply);
}

std::vector<xcb_window_t> clientList(const XConnection& x) {
  auto& ewmh = x.ewmh();
  xcb_ewmh_get_windows_reply_t reply;
  if (!xcb_ewmh_get_client_list_reply(&ewmh, xcb_ewmh_get_client_list(&ewmh, x.screenNumber()),
                                      &reply, nullptr)) {
    return {};
  }
  return windowsFrom(reply);
}

xcb_window_t activeWindow(const XConnection& x) {
  auto& ewmh = x.ewmh();
  xcb_window_t active = XCB_NONE;
  if (!xcb_ewmh_get_active_window_reply(&ewmh, xcb_ewmh_get_active_window(&ewmh, x.screenNumber()),
                                        &active, nullptr)) {
    return XCB_NONE;
  }
  return active;
}

std::vector<ClientWindow> readClientWindows(const XConnection& x,
                                            const std::vector<xcb_window_t>& windows) {
  std::vector<WindowCookies> cookies;
  cookies.reserve(windows.size());
  for (auto w : windows) cookies.push_back(request(x, w));
  const auto desktop = currentDesktop(x);
  std::vector<ClientWindow> result;
  result.reserve(windows.size());
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (auto w = collect(x, windows[i], cookies[i], desktop)) result.push_back(*w);
  }
  return result;
}

std::vector<ClientIdentity> readIdentities(const XConnection& x,
                                           const std::vector<xcb_window_t>& windows) {
  struct Cookies {
    xcb_get_property_cookie_t wmClass, pid;
  };
  std::vector<Cookies> cookies;
  cookies.reserve(windows.size());
  for (auto w : windows) {
    cookies.push_back({xcb_icccm_get_wm_class(x.get(), w), xcb_ewmh_get_wm_pid(&x.ewmh(), w)});
  }
  std::vector<ClientIdentity> result;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    ClientIdentity identity;
    identity.window = windows[i];
    xcb_icccm_get_wm_class_reply_t wmClass;
    if (xcb_icccm_get_wm_class_reply(x.get(), cookies[i].wmClass, &wmClass, nullptr)) {
      identity.instance = wmClass.instance_name ? wmClass.instance_name : "";
      identity.className = wmClass.class_name ? wmClass.class_name : "";
      xcb_icccm_get_wm_class_reply_wipe(&wmClass);
    }
    std::uint32_t pid = 0;
    if (xcb_ewmh_get_wm_pid_reply(&x.ewmh(), cookies[i].pid, &pid, nullptr)) {
      identity.pid = static_cast<ProcessId>(pid);
    }
    result.push_back(std::move(identity));
  }
  return result;
}

}  // namespace orlet::x11
