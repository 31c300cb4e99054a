#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "capture/DisplayManager.h"
#include "foundation/Lifetime.h"
#include "foundation/NotificationCenter.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "foundation/Subscription.h"
#include "foundation/WorkItem.h"
#include "platform/CaptureService.h"
#include "platform/ScreenCapturePermission.h"

namespace orlet {

// What the mirror panel shows, in the order it is decided.
enum class SelectorForeground { permissionCard, loading, grid, enlarged, unreadableScreen };

// The logic of the mirror panel's root view: the screen-recording permission, the display
// catalogue kept fresh every 5 seconds while the grid is shown, and the choice of the display
// shown enlarged. Talks to the panel's controller only through notifications. Main thread only.
class WindowSelectorModel {
 public:
  struct Ports {
    Scheduler& scheduler;
    NotificationCenter& notifications;
    CaptureService& capture;
    ScreenCapturePermission& permission;
    // Whether the mirror panel is on screen now.
    std::function<bool()> isWindowVisible;
    // How the catalogue replays clicks on the enlarged mirror; none by default.
    ClickForwardingPorts clicks = {};
  };

  static constexpr Seconds refreshInterval{5};

  explicit WindowSelectorModel(const Ports& ports);
  WindowSelectorModel(const WindowSelectorModel&) = delete;
  WindowSelectorModel& operator=(const WindowSelectorModel&) = delete;
  ~WindowSelectorModel() = default;

  DisplayManager& dm() { return dm_; }
  const DisplayManager& dm() const { return dm_; }

  Published<std::optional<Display>> selected;
  bool isRequestingPermission() const { return isRequestingPermission_; }

  SelectorForeground foreground() const;
  std::string permissionStatusText() const;
  // The list position, counting from 1, of the selected display; 1 when it is no longer listed.
  int enlargedDisplayIndex() const;

  // The view's own appearance and disappearance.
  void appear();
  void disappear();
  // The application became active (the operator brought one of its windows forward).
  void applicationDidBecomeActive();

  void checkPermissionAndStart(bool requestIfNeeded = false);
  void requestPermission();
  void applyPermission(bool granted);
  // A catalogue refresh; `then` runs once it has ended (at once if one is already running).
  void refresh(std::function<void()> then = {});
  void startTask();
  void openScreenRecordingSettings();

  // A tap on a card of the grid.
  void select(const Display& display);
  // The enlarged view's own way back (the back button goes through backButtonPressed).
  void back();

  // Calls `handler` on a later turn after anything the view shows may have changed; several
  // changes in one turn give one call.
  [[nodiscard]] Subscription observeChanges(std::function<void()> handler);

 private:
  void stopTask();
  void refreshThenStartTask();
  void observeCatalogue();
  void observeNotifications();
  void changed();

  Ports ports_;
  DisplayManager dm_;
  bool isRequestingPermission_ = false;
  ScopedWorkItem task_;
  // Bumped whenever the loop is stopped, so that a start still waiting for its first refresh
  // does not bring the loop back behind a hidden panel.
  std::uint64_t loopEpoch_ = 0;
  std::vector<std::function<void()>> afterRefresh_;
  std::vector<Subscription> subscriptions_;
  Published<std::uint64_t> revision_{0};  // bumped once per turn in which something changed
  bool changePending_ = false;
  Lifetime lifetime_;
};

}  // namespace orlet
