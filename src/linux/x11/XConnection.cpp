#include "linux/x11/XConnection.h"

#include <xcb/xinput.h>

#include <cstdlib>
#include <utility>

namespace orlet::x11 {

std::unique_ptr<XConnection> XConnection::open(const char* display, std::string* error) {
  int screen = 0;
  xcb_connection_t* connection = xcb_connect(display, &screen);
  if (const int failure = xcb_connection_has_error(connection)) {
    xcb_disconnect(connection);
    if (error) {
      const char* name = display ? display : std::getenv("DISPLAY");
      *error = "cannot connect to \"" + std::string(name ? name : "") + "\" (xcb error " +
               std::to_string(failure) + ")";
    }
    return nullptr;
  }
  std::unique_ptr<XConnection> x(new XConnection(connection, screen, true));
  if (!x->initialise()) {
    if (error) *error = "the X server did not answer the atom requests";
    return nullptr;
  }
  return x;
}

std::unique_ptr<XConnection> XConnection::borrow(xcb_connection_t* connection, int screen) {
  if (!connection || xcb_connection_has_error(connection)) return nullptr;
  std::unique_ptr<XConnection> x(new XConnection(connection, screen, false));
  if (!x->initialise()) return nullptr;
  return x;
}

XConnection::XConnection(xcb_connection_t* connection, int screen, bool owned)
    : connection_(connection), screenNumber_(screen), owned_(owned) {}

XConnection::~XConnection() {
  if (ewmhReady_) xcb_ewmh_connection_wipe(&ewmh_);
  if (owned_) xcb_disconnect(connection_);
}

bool XConnection::initialise() {
  xcb_intern_atom_cookie_t* cookies = xcb_ewmh_init_atoms(connection_, &ewmh_);
  if (!cookies || !xcb_ewmh_init_atoms_replies(&ewmh_, cookies, nullptr)) return false;
  ewmhReady_ = true;
  if (screenNumber_ < 0 || screenNumber_ >= ewmh_.nb_screens) return false;
  root_ = ewmh_.screens[screenNumber_]->root;
  return true;
}

xcb_atom_t XConnection::atom(const std::string& name) const {
  if (auto it = atoms_.find(name); it != atoms_.end()) return it->second;
  auto cookie =
      xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  xcb_atom_t atom = XCB_ATOM_NONE;
  if (auto* reply = xcb_intern_atom_reply(connection_, cookie, nullptr)) {
    atom = reply->atom;
    std::free(reply);
  }
  if (atom != XCB_ATOM_NONE) atoms_.emplace(name, atom);
  return atom;
}

bool XConnection::check(xcb_void_cookie_t cookie) const {
  if (auto* error = xcb_request_check(connection_, cookie)) {
    std::free(error);
    return false;
  }
  return true;
}

std::uint8_t XConnection::xinputOpcode() const {
  const auto* extension = xcb_get_extension_data(connection_, &xcb_input_id);
  return extension && extension->present ? extension->major_opcode : 0;
}

bool XConnection::hasWindowManager() const {
  auto& ewmh = ewmh_;
  xcb_window_t child = XCB_NONE;
  if (!xcb_ewmh_get_supporting_wm_check_reply(&ewmh, xcb_ewmh_get_supporting_wm_check(&ewmh, root_),
                                              &child, nullptr)) {
    return false;
  }
  // The child must point at itself, or the property is a leftover of a window manager that
  // has exited (EWMH, _NET_SUPPORTING_WM_CHECK).
  xcb_window_t self = XCB_NONE;
  return xcb_ewmh_get_supporting_wm_check_reply(
             &ewmh, xcb_ewmh_get_supporting_wm_check(&ewmh, child), &self, nullptr) &&
         self == child;
}

std::vector<std::uint32_t> readCardinals(const XConnection& x, xcb_window_t window,
                                         xcb_atom_t property, xcb_atom_t type) {
  auto cookie = xcb_get_property(x.get(), 0, window, property, type, 0, 1024);
  xcb_generic_error_t* error = nullptr;
  auto* reply = xcb_get_property_reply(x.get(), cookie, &error);
  std::free(error);
  std::vector<std::uint32_t> values;
  if (reply && reply->format == 32 && reply->type == type) {
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
    values.assign(data, data + xcb_get_property_value_length(reply) / 4);
  }
  std::free(reply);
  return values;
}

}  // namespace orlet::x11
