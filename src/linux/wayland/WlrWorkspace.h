#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "foundation/Scheduler.h"
#include "foundation/WorkItem.h"
#include "linux/wayland/WaylandConnection.h"
#include "linux/x11/DesktopEntries.h"
#include "platform/Workspace.h"

struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

namespace orlet::wayland {

struct ToplevelEvents;

// Applications as a wlroots compositor shows them to a client of its foreign-toplevel protocol:
// each window with its app_id and whether it is the activated one. An application is its
// app_id, named by its desktop entry; the compositor tells no process, so none is known.
class WlrWorkspace final : public Workspace {
 public:
  // `ownAppId`: the app_id of this program's own windows.
  WlrWorkspace(WaylandConnection& connection, Scheduler& scheduler, x11::DesktopEntries entries,
               std::string ownAppId);
  ~WlrWorkspace() override;

  // Whether the compositor offers the protocol at all; without it nothing is ever in front.
  bool isAvailable() const { return manager_ != nullptr; }

  // How long "no window activated" must last before it counts: the compositor deactivates one
  // window before it activates the next.
  static constexpr Seconds noActiveWindowDelay{0.1};

  std::optional<RunningApplication> frontmostApplication() const override;
  std::vector<RunningApplication> runningApplications() const override;
  std::vector<InstalledApplication> installedApplications() const override;
  void activate(const RunningApplication& app) override;
  std::optional<std::string> mainBundleIdentifier() const override { return ownAppId_; }
  Subscription observeDidActivateApplication(std::function<void()> handler) override;

  struct Toplevel;

 private:
  friend struct ToplevelEvents;
  RunningApplication applicationOf(const std::string& appId) const;
  const Toplevel* activeToplevel() const;
  void toplevelChanged(Toplevel& toplevel);
  void activeMayHaveChanged();

  WaylandConnection& connection_;
  zwlr_foreign_toplevel_manager_v1* manager_;
  Scheduler& scheduler_;
  mutable x11::DesktopEntries entries_;
  std::string ownAppId_;
  std::vector<std::unique_ptr<Toplevel>> toplevels_;  // most recently activated first
  std::uint64_t shown_ = 0;                           // toplevels seen so far
  std::optional<std::string> activeAppId_;
  ScopedWorkItem noActiveWindowCheck_;
  HandlerList<> activationHandlers_;
};

}  // namespace orlet::wayland
