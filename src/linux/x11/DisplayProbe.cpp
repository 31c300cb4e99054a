#include "linux/x11/DisplayProbe.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace orlet::x11 {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

DisplayProbe probeDisplay() {
  const auto display = environment("DISPLAY");
  if (display.empty()) {
    // An X11 client sees only other X clients' windows under XWayland, and without XWayland
    // nothing at all.
    if (!environment("WAYLAND_DISPLAY").empty()) {
      return {false, 0, "session Wayland sans XWayland ; ORLET a besoin d'un écran X11"};
    }
    return {false, 0, "DISPLAY n'est pas défini"};
  }
  int screen = 0;
  xcb_connection_t* connection = xcb_connect(display.c_str(), &screen);
  const int error = xcb_connection_has_error(connection);
  xcb_disconnect(connection);
  if (error) return {false, 0, "connexion impossible à « " + display + " »"};
  return {true, screen, {}};
}

}  // namespace orlet::x11
