#include "XProbe.h"

#include <xcb/res.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
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
  c_ = xcb_connect(display.empty() ? nullptr : display.c_str(), &screen);
  if (xcb_connection_has_error(c_)) throw std::runtime_error("cannot connect to " + display);
  xcb_ewmh_init_atoms_replies(&ewmh_, xcb_ewmh_init_atoms(c_, &ewmh_), nullptr);
  screen_ = ewmh_.screens[screen];
}

XProbe::~XProbe() {
  xcb_ewmh_connection_wipe(&ewmh_);
  xcb_disconnect(c_);
}

// Reads a 32-bit list property (WINDOW, ATOM, CARDINAL) whatever its type; empty when absent.
std::vector<std::uint32_t> XProbe::property(xcb_window_t window, xcb_atom_t name) {
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      c_, xcb_get_property(c_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 1024), nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

std::pair<int, int> XProbe::pointer() {
  Reply<xcb_query_pointer_reply_t> reply(
      xcb_query_pointer_reply(c_, xcb_query_pointer(c_, screen_->root), nullptr));
  return reply ? std::pair<int, int>{reply->root_x, reply->root_y} : std::pair<int, int>{-1, -1};
}

xcb_atom_t XProbe::atom(const std::string& name) {
  Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      c_, xcb_intern_atom(c_, 0, std::uint16_t(name.size()), name.c_str()), nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t XProbe::activeWindow() {
  const auto active = property(screen_->root, ewmh_._NET_ACTIVE_WINDOW);
  return active.empty() ? XCB_NONE : active[0];
}

xcb_window_t XProbe::inputFocus() {
  const Reply<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr));
  return reply ? reply->focus : XCB_NONE;
}

bool XProbe::acceptsFocus(xcb_window_t window) {
  const auto hints = property(window, XCB_ATOM_WM_HINTS);
  constexpr std::uint32_t inputHint = 1;  // flags bit: the input field is set
  const bool input = hints.size() < 2 || !(hints[0] & inputHint) || hints[1] != 0;
  const auto protocols = property(window, ewmh_.WM_PROTOCOLS);
  const xcb_atom_t takeFocus = atom("WM_TAKE_FOCUS");
  return input || std::find(protocols.begin(), protocols.end(), takeFocus) != protocols.end();
}

std::vector<xcb_window_t> XProbe::clientList() {
  return property(screen_->root, ewmh_._NET_CLIENT_LIST);
}

bool XProbe::has(xcb_window_t window, xcb_atom_t name, xcb_atom_t value) {
  const auto list = property(window, name);
  return std::find(list.begin(), list.end(), value) != list.end();
}

bool XProbe::isDock(xcb_window_t window) {
  return has(window, ewmh_._NET_WM_WINDOW_TYPE, ewmh_._NET_WM_WINDOW_TYPE_DOCK);
}

std::vector<xcb_window_t> XProbe::visibleStacking() {
  auto list = property(screen_->root, ewmh_._NET_CLIENT_LIST_STACKING);
  std::erase_if(list, [this](xcb_window_t w) {
    return isDock(w) || !isViewable(w) || hasState(w, ewmh_._NET_WM_STATE_HIDDEN);
  });
  return list;
}

std::vector<xcb_window_t> XProbe::children(xcb_window_t parent) {
  Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c_, xcb_query_tree(c_, parent), nullptr));
  if (!tree) return {};
  const auto* begin = xcb_query_tree_children(tree.get());
  return {begin, begin + xcb_query_tree_children_length(tree.get())};
}

// Managed windows live inside the window manager's frames, withdrawn ones on the root.
std::vector<xcb_window_t> XProbe::topLevelsOf(pid_t pid) {
  auto candidates = children(screen_->root);
  for (auto w : clientList()) {
    if (std::find(candidates.begin(), candidates.end(), w) == candidates.end()) {
      candidates.push_back(w);
    }
  }
  std::erase_if(candidates, [&](xcb_window_t w) { return pidOf(w) != pid; });
  return candidates;
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
    if (isDock(w)) return w;
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
  return has(window, ewmh_._NET_WM_STATE, state);
}

std::optional<std::uint32_t> XProbe::desktop(xcb_window_t window) {
  const auto desktop = property(window, ewmh_._NET_WM_DESKTOP);
  return desktop.empty() ? std::nullopt : std::optional(desktop[0]);
}

WindowRect XProbe::rect(xcb_window_t window) {
  Reply<xcb_get_geometry_reply_t> g(
      xcb_get_geometry_reply(c_, xcb_get_geometry(c_, window), nullptr));
  Reply<xcb_translate_coordinates_reply_t> t(xcb_translate_coordinates_reply(
      c_, xcb_translate_coordinates(c_, window, screen_->root, 0, 0), nullptr));
  if (!g || !t) return {};
  return {t->dst_x, t->dst_y, g->width, g->height};
}

std::optional<pid_t> XProbe::pidOf(xcb_window_t window) {
  const auto pid = property(window, ewmh_._NET_WM_PID);
  return pid.empty() ? std::nullopt : std::optional(static_cast<pid_t>(pid[0]));
}

xcb_window_t XProbe::paint(const WindowRect& r, std::uint32_t rgb) {
  const xcb_window_t id = xcb_generate_id(c_);
  const std::uint32_t values[] = {toPixel(rgb), 1};
  xcb_create_window(c_, XCB_COPY_FROM_PARENT, id, screen_->root, std::int16_t(r.x),
                    std::int16_t(r.y), std::uint16_t(r.width), std::uint16_t(r.height), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  xcb_map_window(c_, id);
  const std::uint32_t below = XCB_STACK_MODE_BELOW;
  xcb_configure_window(c_, id, XCB_CONFIG_WINDOW_STACK_MODE, &below);
  sync();
  return id;
}

void XProbe::fill(xcb_window_t window, const WindowRect& r, std::uint32_t rgb) {
  const xcb_gcontext_t gc = xcb_generate_id(c_);
  const std::uint32_t pixel = toPixel(rgb);
  xcb_create_gc(c_, gc, window, XCB_GC_FOREGROUND, &pixel);
  const xcb_rectangle_t rect{std::int16_t(r.x), std::int16_t(r.y), std::uint16_t(r.width),
                             std::uint16_t(r.height)};
  xcb_poly_fill_rectangle(c_, window, gc, 1, &rect);
  xcb_free_gc(c_, gc);
  sync();
}

std::vector<std::uint32_t> XProbe::pixels(const WindowRect& r, xcb_window_t window) {
  std::vector<std::uint32_t> result(std::size_t(r.width) * std::size_t(r.height));
  Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
      c_,
      xcb_get_image(c_, XCB_IMAGE_FORMAT_Z_PIXMAP, window ? window : screen_->root,
                    std::int16_t(r.x), std::int16_t(r.y), std::uint16_t(r.width),
                    std::uint16_t(r.height), ~0u),
      nullptr));
  const std::size_t bytes = screen_->root_depth == 16 ? 2 : 4;
  if (!image || xcb_get_image_data_length(image.get()) < int(result.size() * bytes)) return result;
  const std::uint8_t* data = xcb_get_image_data(image.get());
  for (std::size_t i = 0; i < result.size(); ++i) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, data + i * bytes, bytes);
    result[i] = fromPixel(pixel);
  }
  return result;
}

// A 30-bit root keeps ten bits a channel (2:10:10:10), a 16-bit one 5:6:5; every other depth
// here is 8:8:8.
std::uint32_t XProbe::toPixel(std::uint32_t rgb) const {
  const auto channel = [&](int shift, int bits) {
    return ((rgb >> shift) & 0xFF) * ((1u << bits) - 1) / 255;
  };
  if (screen_->root_depth == 30)
    return channel(16, 10) << 20 | channel(8, 10) << 10 | channel(0, 10);
  if (screen_->root_depth == 16) return channel(16, 5) << 11 | channel(8, 6) << 5 | channel(0, 5);
  return rgb;
}

std::uint32_t XProbe::fromPixel(std::uint32_t pixel) const {
  const auto channel = [&](int shift, int bits) {
    return ((pixel >> shift) & ((1u << bits) - 1)) * 255 / ((1u << bits) - 1);
  };
  if (screen_->root_depth == 30)
    return channel(20, 10) << 16 | channel(10, 10) << 8 | channel(0, 10);
  if (screen_->root_depth == 16) return channel(11, 5) << 16 | channel(5, 6) << 8 | channel(0, 5);
  return pixel & 0xFFFFFF;
}

bool XProbe::withinOneDisplay(const WindowRect& r) {
  Reply<xcb_randr_get_monitors_reply_t> monitors(
      xcb_randr_get_monitors_reply(c_, xcb_randr_get_monitors(c_, screen_->root, 1), nullptr));
  if (!monitors || r.width <= 0) return false;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem > 0;
       xcb_randr_monitor_info_next(&it)) {
    const auto& m = *it.data;
    if (r.x >= m.x && r.y >= m.y && r.x + r.width <= m.x + m.width &&
        r.y + r.height <= m.y + m.height) {
      return true;
    }
  }
  return false;
}

xcb_randr_output_t XProbe::output(const std::string& name) {
  Reply<xcb_randr_get_screen_resources_current_reply_t> resources(
      xcb_randr_get_screen_resources_current_reply(
          c_, xcb_randr_get_screen_resources_current(c_, screen_->root), nullptr));
  if (!resources) return XCB_NONE;
  const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
  for (int i = 0; i < xcb_randr_get_screen_resources_current_outputs_length(resources.get()); ++i) {
    Reply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        c_, xcb_randr_get_output_info(c_, outputs[i], XCB_CURRENT_TIME), nullptr));
    if (!info) continue;
    const auto* text = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
    if (std::string(text, xcb_randr_get_output_info_name_length(info.get())) == name) {
      return outputs[i];
    }
  }
  return XCB_NONE;
}

void XProbe::setOutputBytes(xcb_randr_output_t output, const std::string& name,
                            const std::vector<std::uint8_t>& bytes) {
  Reply<xcb_generic_error_t> error(xcb_request_check(
      c_, xcb_randr_change_output_property_checked(c_, output, atom(name), XCB_ATOM_INTEGER, 8,
                                                   XCB_PROP_MODE_REPLACE,
                                                   std::uint32_t(bytes.size()), bytes.data())));
  if (error) throw std::runtime_error("cannot set output property " + name);
}

// A round trip: every request sent before it has been handled when it returns.
void XProbe::sync() {
  std::free(xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr));
}

void XProbe::press(std::initializer_list<std::uint32_t> keysyms) {
  std::vector<xcb_keycode_t> codes;
  for (auto keysym : keysyms) {
    const auto found = keycodesOf(keysym);
    if (found.empty()) throw std::runtime_error("no key types keysym " + std::to_string(keysym));
    codes.push_back(found.front());
  }
  for (auto code : codes) {
    xcb_test_fake_input(c_, XCB_KEY_PRESS, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  }
  for (auto code = codes.rbegin(); code != codes.rend(); ++code) {
    xcb_test_fake_input(c_, XCB_KEY_RELEASE, *code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  }
  sync();
}

void XProbe::click(int x, int y, int button) {
  const auto detail = static_cast<std::uint8_t>(button);
  xcb_test_fake_input(c_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, screen_->root,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
  xcb_test_fake_input(c_, XCB_BUTTON_PRESS, detail, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  xcb_test_fake_input(c_, XCB_BUTTON_RELEASE, detail, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  sync();
}

void XProbe::raise(xcb_window_t window) {
  xcb_ewmh_get_atoms_reply_t supported;
  bool restack = false;
  if (xcb_ewmh_get_supported_reply(&ewmh_, xcb_ewmh_get_supported(&ewmh_, 0), &supported,
                                   nullptr)) {
    restack = std::count(supported.atoms, supported.atoms + supported.atoms_len,
                         ewmh_._NET_RESTACK_WINDOW) > 0;
    xcb_ewmh_get_atoms_reply_wipe(&supported);
  }
  if (restack) {
    xcb_ewmh_request_restack_window(&ewmh_, 0, window, XCB_NONE, XCB_STACK_MODE_ABOVE);
  } else {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(c_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  }
  xcb_flush(c_);
}

void XProbe::activate(xcb_window_t window) {
  xcb_ewmh_request_change_active_window(&ewmh_, 0, window, XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER,
                                        serverTime(), activeWindow());
  xcb_flush(c_);
}

// A zero-length append changes nothing but still reports the change, with the server's time
// (ICCCM 2.1).
xcb_timestamp_t XProbe::serverTime() {
  if (!clock_) {
    clock_ = xcb_generate_id(c_);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c_, 0, clock_, screen_->root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
  }
  xcb_change_property(c_, XCB_PROP_MODE_APPEND, clock_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                      nullptr);
  xcb_flush(c_);
  while (auto* event = xcb_wait_for_event(c_)) {
    const auto* change = reinterpret_cast<xcb_property_notify_event_t*>(event);
    const bool ours =
        (event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY && change->window == clock_;
    const xcb_timestamp_t time = ours ? change->time : XCB_CURRENT_TIME;
    std::free(event);
    if (ours) return time;
  }
  return XCB_CURRENT_TIME;
}

std::vector<xcb_keycode_t> XProbe::keycodesOf(std::uint32_t keysym) {
  auto* symbols = xcb_key_symbols_alloc(c_);
  xcb_keycode_t* found = xcb_key_symbols_get_keycode(symbols, keysym);
  std::vector<xcb_keycode_t> codes;
  for (auto* code = found; code && *code != XCB_NO_SYMBOL; ++code) codes.push_back(*code);
  std::free(found);
  xcb_key_symbols_free(symbols);
  return codes;
}

bool XProbe::grabKey(std::uint32_t keysym, std::uint16_t modifiers) {
  const auto codes = keycodesOf(keysym);
  bool grabbed = !codes.empty();
  for (auto code = codes.begin(); grabbed && code != codes.end(); ++code) {
    auto* error =
        xcb_request_check(c_, xcb_grab_key_checked(c_, 0, screen_->root, modifiers, *code,
                                                   XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    grabbed = error == nullptr;
    std::free(error);
  }
  return grabbed;
}

XProbe::ClientResources XProbe::clientResources(pid_t pid) {
  ClientResources total;
  xcb_res_client_id_spec_t all{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const Reply<xcb_res_query_client_ids_reply_t> ids(
      xcb_res_query_client_ids_reply(c_, xcb_res_query_client_ids(c_, 1, &all), nullptr));
  if (!ids) return total;
  for (auto it = xcb_res_query_client_ids_ids_iterator(ids.get()); it.rem;
       xcb_res_client_id_value_next(&it)) {
    const auto& [id, length] = *it.data;
    if (length < 4 || *xcb_res_client_id_value_value(it.data) != std::uint32_t(pid)) continue;
    const auto client = id.client;
    const Reply<xcb_res_query_client_resources_reply_t> resources(
        xcb_res_query_client_resources_reply(c_, xcb_res_query_client_resources(c_, client),
                                             nullptr));
    if (resources) {
      const auto* types = xcb_res_query_client_resources_types(resources.get());
      for (int i = 0; i < xcb_res_query_client_resources_types_length(resources.get()); ++i) {
        total.count += types[i].count;
      }
    }
    const Reply<xcb_res_query_client_pixmap_bytes_reply_t> pixmaps(
        xcb_res_query_client_pixmap_bytes_reply(c_, xcb_res_query_client_pixmap_bytes(c_, client),
                                                nullptr));
    if (pixmaps) total.pixmapBytes += pixmaps->bytes;
  }
  return total;
}

}  // namespace orlet::x11test
