#pragma once

#include <functional>

namespace orlet {

// Whether this program may read what other programs show on screen.
class ScreenCapturePermission {
 public:
  virtual ~ScreenCapturePermission() = default;

  // The current grant, without asking the user.
  virtual bool preflight() = 0;

  // Asks for the grant where the desktop can ask the user, and reports the answer on the main
  // thread through `completion`, exactly once, possibly before returning.
  virtual void request(std::function<void(bool granted)> completion) = 0;

  // Opens the desktop's settings page where the grant is given; does nothing when the desktop
  // has none.
  virtual void openSettings() = 0;
};

}  // namespace orlet
