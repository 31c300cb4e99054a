#pragma once

#include <string>
#include <vector>

#include "XProbe.h"

namespace orlet::x11test {

// A private Wayland session (scripts/swaysession.sh: headless sway, two outputs 1920x1080 at 0,0
// and 2560x1440 at 1920,0, every window floating), stopped again when destroyed.
class SwaySession {
 public:
  SwaySession();
  SwaySession(const SwaySession&) = delete;
  SwaySession& operator=(const SwaySession&) = delete;
  ~SwaySession();

  // The socket's path, for WAYLAND_DISPLAY.
  const std::string& display() const { return display_; }
  // swaymsg with these arguments on the session; what it printed.
  std::string swaymsg(const std::string& arguments) const;

  struct Window {
    std::string appId;
    WindowRect rect;
    bool focused = false;
  };
  // The windows of the session's tree, as sway lays them out.
  std::vector<Window> windows() const;

 private:
  std::string ipcSocket() const;

  std::string name_;
  std::string display_;
};

}  // namespace orlet::x11test
