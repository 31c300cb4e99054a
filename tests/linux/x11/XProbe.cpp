#include "XProbe.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace orlet::x11test {
namespace {

struct Free {
  void operator()(void* p) const { std::free(p); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

}  // namespace

XProbe::XProbe(const std::string& display) {
  int screen = 0;
  c_ = xcb_connect(display.c_str(), &screen);
  if (xcb_connection_has_error(c_)) throw std::runtime_error("cannot connect to " + display);
  xcb_ewmh_init_atoms_replies(&ewmh_, xcb_ewmh_init_atoms(c_, &ewmh_), nullptr);
  root_ = ewmh_.screens[screen]->root;
}

XProbe::~XProbe() {
  xcb_ewmh_connection_wipe(&ewmh_);
  xcb_disconnect(c_);
}

xcb_window_t XProbe::activeWindow() {
  xcb_window_t active = XCB_NONE;
  if (!xcb_ewmh_get_active_window_reply(&ewmh_, xcb_ewmh_get_active_window(&ewmh_, 0), &active,
                                        nullptr)) {
    return XCB_NONE;
  }
  return active;
}

std::vector<xcb_window_t> XProbe::clientList() {
  xcb_ewmh_get_windows_reply_t list;
  if (!xcb_ewmh_get_client_list_reply(&ewmh_, xcb_ewmh_get_client_list(&ewmh_, 0), &list,
                                      nullptr)) {
    return {};
  }
  std::vector<xcb_window_t> windows(list.windows, list.windows + list.windows_len);
  xcb_ewmh_get_windows_reply_wipe(&list);
  return windows;
}

std::vector<xcb_window_t> XProbe::visibleStacking() {
  xcb_ewmh_get_windows_reply_t list;
  if (!xcb_ewmh_get_client_list_stacking_reply(&ewmh_, xcb_ewmh_get_client_list_stacking(&ewmh_, 0),
                                               &list, nullptr)) {
    return {};
  }
  std::vector<xcb_window_t> visible;
  for (std::uint32_t i = 0; i < list.windows_len; ++i) {
    const auto w = list.windows[i];
    xcb_ewmh_get_atoms_reply_t types;
    bool dock = false;
    if (xcb_ewmh_get_wm_window_type_reply(&ewmh_, xcb_ewmh_get_wm_window_type(&ewmh_, w), &types,
                                          nullptr)) {
      dock = std::count(types.atoms, types.atoms + types.atoms_len,
                        ewmh_._NET_WM_WINDOW_TYPE_DOCK) > 0;
      xcb_ewmh_get_atoms_reply_wipe(&types);
    }
    if (!dock && isViewable(w) && !hasState(w, ewmh_._NET_WM_STATE_HIDDEN)) visible.push_back(w);
  }
  xcb_ewmh_get_windows_reply_wipe(&list);
  return visible;
}

std::vector<xcb_window_t> XProbe::children(xcb_window_t parent) {
  Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c_, xcb_query_tree(c_, parent), nullptr));
  if (!tree) return {};
  const auto* begin = xcb_query_tree_children(tree.get());
  return {begin, begin + xcb_query_tree_children_length(tree.get())};
}

// Managed windows live inside the window manager's frames, withdrawn ones on the root.
std::vector<xcb_window_t> XProbe::topLevelsOf(pid_t pid) {
  std::vector<xcb_window_t> candidates = children(root_);
  for (auto w : clientList()) {
    if (std::find(candidates.begin(), candidates.end(), w) == candidates.end()) {
      candidates.push_back(w);
    }
  }
  std::vector<xcb_window_t> owned;
  for (auto w : candidates) {
    if (pidOf(w) == pid) owned.push_back(w);
  }
  return owned;
}

std::vector<xcb_window_t> XProbe::descendantsOf(xcb_window_t ancestor, pid_t pid) {
  std::vector<xcb_window_t> owned;
  for (auto w : children(ancestor)) {
    if (pidOf(w) == pid) owned.push_back(w);
    for (auto d : descendantsOf(w, pid)) owned.push_back(d);
  }
  return owned;
}

std::optional<xcb_window_t> XProbe::trayPanel() {
  for (auto w : clientList()) {
    xcb_ewmh_get_atoms_reply_t types;
    if (!xcb_ewmh_get_wm_window_type_reply(&ewmh_, xcb_ewmh_get_wm_window_type(&ewmh_, w), &types,
                                           nullptr)) {
      continue;
    }
    const bool dock =
        std::count(types.atoms, types.atoms + types.atoms_len, ewmh_._NET_WM_WINDOW_TYPE_DOCK) > 0;
    xcb_ewmh_get_atoms_reply_wipe(&types);
    if (dock) return w;
  }
  return std::nullopt;
}

bool XProbe::isViewable(xcb_window_t window) {
  Reply<xcb_get_window_attributes_reply_t> a(
      xcb_get_window_attributes_reply(c_, xcb_get_window_attributes(c_, window), nullptr));
  return a && a->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XProbe::isOverrideRedirect(xcb_window_t window) {
  Reply<xcb_get_window_attributes_reply_t> a(
      xcb_get_window_attributes_reply(c_, xcb_get_window_attributes(c_, window), nullptr));
  return a && a->override_redirect;
}

bool XProbe::hasState(xcb_window_t window, xcb_atom_t state) {
  xcb_ewmh_get_atoms_reply_t states;
  if (!xcb_ewmh_get_wm_state_reply(&ewmh_, xcb_ewmh_get_wm_state(&ewmh_, window), &states,
                                   nullptr)) {
    return false;
  }
  const bool found = std::count(states.atoms, states.atoms + states.atoms_len, state) > 0;
  xcb_ewmh_get_atoms_reply_wipe(&states);
  return found;
}

std::optional<std::uint32_t> XProbe::desktop(xcb_window_t window) {
  std::uint32_t desktop = 0;
  if (!xcb_ewmh_get_wm_desktop_reply(&ewmh_, xcb_ewmh_get_wm_desktop(&ewmh_, window), &desktop,
                                     nullptr)) {
    return std::nullopt;
  }
  return desktop;
}

std::optional<WindowRect> XProbe::rect(xcb_window_t window) {
  Reply<xcb_get_geometry_reply_t> g(
      xcb_get_geometry_reply(c_, xcb_get_geometry(c_, window), nullptr));
  Reply<xcb_translate_coordinates_reply_t> t(xcb_translate_coordinates_reply(
      c_, xcb_translate_coordinates(c_, window, root_, 0, 0), nullptr));
  if (!g || !t) return std::nullopt;
  return WindowRect{t->dst_x, t->dst_y, g->width, g->height};
}

std::optional<pid_t> XProbe::pidOf(xcb_window_t window) {
  std::uint32_t pid = 0;
  if (!xcb_ewmh_get_wm_pid_reply(&ewmh_, xcb_ewmh_get_wm_pid(&ewmh_, window), &pid, nullptr)) {
    return std::nullopt;
  }
  return static_cast<pid_t>(pid);
}

}  // namespace orlet::x11test
