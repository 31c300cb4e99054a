#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

std::unique_ptr<XcbConnection> XcbConnection::open(const char* displayName, std::string& error) {
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(displayName, &screenNumber);
  if (xcb_connection_has_error(connection)) {
    xcb_disconnect(connection);
    error = "cannot connect to the X server";
    return nullptr;
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < screenNumber && screens.rem > 0; ++i) xcb_screen_next(&screens);
  if (screens.rem == 0) {
    xcb_disconnect(connection);
    error = "the X server has no such screen";
    return nullptr;
  }
  return std::unique_ptr<XcbConnection>(new XcbConnection(connection, screens.data));
}

XcbConnection::~XcbConnection() {
  xcb_disconnect(connection_);
}

std::optional<std::string> XcbConnection::check(xcb_void_cookie_t cookie, const char* what) const {
  Reply<xcb_generic_error_t> error(xcb_request_check(connection_, cookie));
  if (!error) return std::nullopt;
  return describe(what, *error);
}

bool XcbConnection::hasExtension(xcb_extension_t* extension, std::uint8_t* firstEvent) const {
  const xcb_query_extension_reply_t* data = xcb_get_extension_data(connection_, extension);
  if (!data || !data->present) return false;
  if (firstEvent) *firstEvent = data->first_event;
  return true;
}

std::string describe(const char* what, const xcb_generic_error_t& error) {
  return std::string(what) + ": X error " + std::to_string(error.error_code) + " (major " +
         std::to_string(error.major_code) + ", minor " + std::to_string(error.minor_code) + ")";
}

}  // namespace orlet::linux_capture
