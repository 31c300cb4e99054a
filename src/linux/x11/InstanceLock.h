#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "linux/x11/XConnection.h"

namespace orlet::x11 {

// One ORLET per X screen: the running one owns the selection ORLET_S<screen> (an ICCCM
// manager-style selection) through a window of its own that is never mapped. The server drops
// the ownership when that process or its connection goes, even after a crash, so nothing has to
// be cleaned up and no stale lock file can keep a new instance out.
class InstanceLock {
 public:
  // Who holds the screen when `acquire` fails: the holder's process id, when it says.
  struct Holder {
    std::optional<pid_t> pid;
  };

  // Takes the selection unless another client holds it. Check and take happen under a server
  // grab, so that two instances started together cannot both win.
  static std::unique_ptr<InstanceLock> acquire(const XConnection& x, Holder* holder);

  // As acquire, but while `predecessor` (the ORLET this one replaces after an update, which is
  // still quitting) holds the screen, waits up to `patience` for it to let go; `waiting` is
  // called once if it has to.
  static std::unique_ptr<InstanceLock> acquireAfter(const XConnection& x, pid_t predecessor,
                                                    std::chrono::milliseconds patience,
                                                    Holder* holder,
                                                    const std::function<void()>& waiting);

  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;
  ~InstanceLock();

 private:
  InstanceLock(xcb_connection_t* connection, xcb_window_t window)
      : connection_(connection), window_(window) {}

  // The connection itself, not the XConnection around it: the lock may outlive the adapters.
  xcb_connection_t* connection_;
  xcb_window_t window_;
};

}  // namespace orlet::x11
