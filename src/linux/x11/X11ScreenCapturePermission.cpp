#include "linux/x11/X11ScreenCapturePermission.h"

#include <cstring>

#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

constexpr const char* kWaylandReason =
    "ORLET : session Wayland détectée. Un client X11 n'y voit pas les fenêtres des autres "
    "applications : la capture d'écran est impossible. Ouvrez une session X11 (Xorg) pour "
    "utiliser le miroir.";
constexpr const char* kRefusedReason =
    "ORLET : le serveur X refuse la lecture de la fenêtre racine : la capture d'écran est "
    "impossible avec cette connexion.";

bool equals(const char* value, const char* expected) {
  return value && std::strcmp(value, expected) == 0;
}

}  // namespace

SessionKind sessionKindFromEnvironment(const std::function<const char*(const char*)>& getenv) {
  const char* waylandDisplay = getenv("WAYLAND_DISPLAY");
  if (equals(getenv("XDG_SESSION_TYPE"), "wayland") || (waylandDisplay && *waylandDisplay)) {
    return SessionKind::wayland;
  }
  return SessionKind::x11;
}

X11ScreenCapturePermission::X11ScreenCapturePermission(const XConnection& x, SessionKind session,
                                                       Scheduler& scheduler,
                                                       std::function<void()> openSettings,
                                                       std::ostream& diagnostics)
    : x_(x),
      session_(session),
      scheduler_(scheduler),
      openSettings_(std::move(openSettings)),
      diagnostics_(diagnostics) {}

bool X11ScreenCapturePermission::canReadRootWindow() const {
  const auto image = waitReply<xcb_get_image_reply_t>(
      x_.get(), xcb_get_image_reply,
      xcb_get_image(x_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, x_.root(), 0, 0, 1, 1, ~0u));
  return image != nullptr;
}

void X11ScreenCapturePermission::explainOnce(const char* reason) {
  if (explained_) return;
  explained_ = true;
  diagnostics_ << reason << std::endl;
}

bool X11ScreenCapturePermission::preflight() {
  if (session_ == SessionKind::wayland) {
    explainOnce(kWaylandReason);
    return false;
  }
  if (!canReadRootWindow()) {
    explainOnce(kRefusedReason);
    return false;
  }
  return true;
}

void X11ScreenCapturePermission::request(std::function<void(bool granted)> completion) {
  // X11 has nothing to ask the user; the answer still arrives on a later turn, as a prompt's
  // would, so callers behave the same on every desktop.
  const bool granted = preflight();
  scheduler_.async([completion = std::move(completion), granted] { completion(granted); });
}

void X11ScreenCapturePermission::openSettings() {
  if (openSettings_) openSettings_();
}

}  // namespace orlet::x11
