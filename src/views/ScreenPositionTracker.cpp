#include "views/ScreenPositionTracker.h"

#include "views/MirrorGeometry.h"

namespace orlet {

ScreenPositionTracker::ScreenPositionTracker(Scheduler& scheduler,
                                             MouseTeleportManager& teleportManager,
                                             const DisplayInfoProvider& displayInfo,
                                             std::function<std::optional<Rect>()> viewRectOnScreen)
    : scheduler_(scheduler),
      teleportManager_(teleportManager),
      displayInfo_(displayInfo),
      viewRectOnScreen_(std::move(viewRectOnScreen)) {}

void ScreenPositionTracker::startTracking(std::uint32_t displayId) {
  stopTracking();
  displayId_ = displayId;
  timer_ = scheduler_.every(updateInterval, lifetime_.guard([this] { updatePosition(); }));
}

void ScreenPositionTracker::stopTracking() {
  timer_ = ScopedWorkItem();
}

// The view's rectangle comes in root coordinates, top-left origin: no flip against the main
// screen's height is needed. An unplugged display has empty bounds, and so an empty picture
// rectangle: no jump can happen.
void ScreenPositionTracker::updatePosition() {
  if (!displayId_) return;
  const auto view = viewRectOnScreen_();
  if (!view) return;
  const Rect fit = mirrorPictureRect(displayInfo_.bounds(*displayId_).size(), view->size());
  teleportManager_.updateMirrorRect(
      fit.isEmpty() ? Rect{} : Rect{view->x + fit.x, view->y + fit.y, fit.width, fit.height});
}

}  // namespace orlet
