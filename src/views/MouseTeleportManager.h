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
// a window onto that display: moving into a visible part of the picture (while the editor or
// this program is in front) puts the pointer on the display at the matching spot, and reaching
// or crossing an edge of the display brings it back just outside the matching edge of the
// picture. A picture that appears under a resting pointer, or lies under another window, lets
// nothing through. Main thread only.
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
    // The mirror's own window, to tell whether another window covers the picture at the
    // pointer; none (or an empty function) leaves coverage unchecked.
    std::function<std::optional<WindowNumber>()> mirrorWindow = {};
  };

  enum class ScreenEdge { top, bottom, left, right };

  static constexpr Seconds checkInterval{1.0 / 60};
  static constexpr double edgeMargin = 3.0;
  static constexpr double landingDistance = 20.0;
  static constexpr Seconds teleportCooldown{0.15};
  // Wider than the panel's resize grips along its edges.
  static constexpr double resizeBand = 8.0;

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
  bool bringBackFromEdge(Point p, bool onTarget);
  bool enterDisplay(Point p);
  bool isInWayIn(Point p) const;
  void forgetPointer();
  bool mayEnter(Point p);
  bool isPictureVisibleAt(Point p) const;
  std::optional<Point> crossingOfEdge(Point p) const;
  Point teleportToMirrorEdge(ScreenEdge edge, Point from, bool unconditional);
  void teleportMouse(Point to, std::optional<Rect> from);
  bool isCaptureOneOrORLETFocused() const;
  void publishOnTarget(bool onTarget);

  Ports ports_;
  std::optional<std::uint32_t> targetDisplayID_;
  Rect targetDisplayBounds_;
  Rect mirrorScreenRect_;
  std::optional<Seconds> lastTeleportTime_;
  // Where the last sample found the pointer (or where a jump put it); none after a pause.
  std::optional<Point> lastPoint_;
  bool entryRefused_ = false;  // the last sample's way into the picture was closed
  bool announced_ = false;     // the last value handed on for publication
  Lifetime lifetime_;
  SamplingTimer timer_;
};

}  // namespace orlet
