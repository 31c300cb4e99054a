#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "foundation/Lifetime.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "platform/DisplayInfo.h"
#include "platform/SyntheticInput.h"
#include "platform/WindowServer.h"
#include "views/DisplayPreviewModel.h"
#include "views/SamplingTimer.h"
#include "window/CaptureOneFocus.h"

namespace orlet {

// Lets the pointer cross between the mirror and the display it shows, as if the miniature were
// a window onto that display: entering the picture (while the editor or this program is in
// front) puts the pointer on the display at the matching spot, and reaching an edge of the
// display brings it back just outside the matching edge of the picture. Main thread only.
class MouseTeleportManager final : public PreviewCompanion {
 public:
  struct Ports {
    Scheduler& scheduler;
    const WindowServer& windowServer;  // the pointer
    SyntheticInput& input;             // the warp
    const CaptureOneFocus& editor;     // the front application
    const DisplayInfoProvider& displayInfo;
    std::function<bool()> isWindowVisible;     // the mirror is on screen
    std::function<bool()> isWindowBeingMoved;  // the user is dragging the mirror
  };

  enum class ScreenEdge { top, bottom, left, right };

  static constexpr Seconds checkInterval{1.0 / 60};
  static constexpr double edgeMargin = 3.0;
  static constexpr double landingDistance = 20.0;
  static constexpr Seconds teleportCooldown{0.15};

  explicit MouseTeleportManager(const Ports& ports);

  Published<bool> isMouseOnTargetDisplay{false};

  // Reads the display's bounds once, here; a second start only changes the target.
  void startMonitoring(std::uint32_t displayId);
  // Safe when not monitoring.
  void stopMonitoring();
  // The mirror picture's global rectangle, letterbox bands excluded.
  void updateMirrorRect(Rect rect) { mirrorScreenRect_ = rect; }

  const std::optional<std::uint32_t>& targetDisplayID() const { return targetDisplayID_; }
  Rect targetDisplayBounds() const { return targetDisplayBounds_; }
  Rect mirrorScreenRect() const { return mirrorScreenRect_; }

  void start(const Display& display) override { startMonitoring(display.displayID); }
  void stop() override { stopMonitoring(); }

  // The first edge band of `r` (left, right, top, bottom, in that order) that `p` lies in.
  static std::optional<ScreenEdge> detectEdge(Point p, Rect r);

 private:
  void checkMousePosition();
  void teleportToMirrorEdge(ScreenEdge edge, Point from);
  void teleportMouse(Point to, const Rect& from);
  bool isCaptureOneOrORLETFocused() const;
  void publishOnTarget(bool onTarget);

  Ports ports_;
  std::optional<std::uint32_t> targetDisplayID_;
  Rect targetDisplayBounds_;
  Rect mirrorScreenRect_;
  std::optional<Seconds> lastTeleportTime_;
  bool announced_ = false;  // the last value handed on for publication
  Lifetime lifetime_;
  SamplingTimer timer_;
};

}  // namespace orlet
