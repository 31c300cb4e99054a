#pragma once

#include <string>

#include "foundation/HandlerList.h"
#include "foundation/Scheduler.h"
#include "foundation/WorkItem.h"
#include "linux/x11/ClientWindows.h"
#include "linux/x11/DesktopEntries.h"
#include "linux/x11/XConnection.h"
#include "linux/x11/XEventSource.h"
#include "platform/Workspace.h"

namespace orlet::x11 {

// Applications as an EWMH window manager shows them: the active one is the owner of
// _NET_ACTIVE_WINDOW, the running ones own the windows of _NET_CLIENT_LIST. An application is
// told apart by its process (_NET_WM_PID), named by its desktop entry.
class X11Workspace final : public Workspace {
 public:
  // WM_CLASS of this program's own windows.
  struct OwnClass {
    std::string instance;
    std::string className;
  };

  X11Workspace(XConnection& x, XEventSource& events, Scheduler& scheduler, DesktopEntries entries,
               OwnClass own);

  // How long "no active window" must last before it counts: window managers pass through it
  // between two activations (openbox does).
  static constexpr Seconds noActiveWindowDelay{0.1};

  std::optional<RunningApplication> frontmostApplication() const override;
  std::vector<RunningApplication> runningApplications() const override;
  std::vector<InstalledApplication> installedApplications() const override;
  void activate(const RunningApplication& app) override;
  std::optional<std::string> mainBundleIdentifier() const override;
  Subscription observeDidActivateApplication(std::function<void()> handler) override;

 private:
  RunningApplication applicationOf(const ClientIdentity& identity) const;
  std::string keyOf(xcb_window_t window) const;
  xcb_window_t topWindowOf(const RunningApplication& app) const;
  void selectRootProperties();
  void handle(const xcb_generic_event_t& event);
  void activeWindowChanged();

  XConnection& x_;
  XEventSource& events_;
  Scheduler& scheduler_;
  mutable DesktopEntries entries_;
  OwnClass own_;
  HandlerList<> activationHandlers_;
  std::string activeKey_;  // empty: no active window
  ScopedWorkItem noActiveWindowCheck_;
  Subscription eventSubscription_;
};

}  // namespace orlet::x11
