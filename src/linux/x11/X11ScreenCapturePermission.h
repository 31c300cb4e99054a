#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <ostream>

#include "foundation/Scheduler.h"
#include "linux/x11/XConnection.h"
#include "platform/ScreenCapturePermission.h"

namespace orlet::x11 {

enum class SessionKind { x11, wayland };

// A Wayland session, even when this program talks to XWayland, where it sees only X clients:
// XDG_SESSION_TYPE says "wayland" or WAYLAND_DISPLAY is set.
SessionKind sessionKindFromEnvironment(const std::function<const char*(const char*)>& getenv);

// Screen recording on X11 needs no grant from the user: it is allowed when the server lets this
// client read the root window. In a Wayland session it is never allowed, since the other
// applications' windows are out of reach. The first refusal is explained once on `diagnostics`.
class X11ScreenCapturePermission final : public ScreenCapturePermission {
 public:
  // `x` must outlive this object.
  X11ScreenCapturePermission(const XConnection& x, SessionKind session, Scheduler& scheduler,
                             std::function<void()> openSettings, std::ostream& diagnostics);

  bool preflight() override;
  void request(std::function<void(bool granted)> completion) override;
  void openSettings() override;

 private:
  bool canReadRootWindow() const;
  void explainOnce(const char* reason);

  const XConnection& x_;
  SessionKind session_;
  Scheduler& scheduler_;
  std::function<void()> openSettings_;
  std::ostream& diagnostics_;
  bool explained_ = false;
};

}  // namespace orlet::x11
