#include "views/ScreenPositionTracker.h"

#include "views/MirrorGeometry.h"

namespace orlet {

ScreenPositionTracker::ScreenPositionTracker(Scheduler& scheduler, const WindowServer& pointer,
                                             MouseTeleportManager& teleportManager,
                                             const DisplayInfoProvider& displayInfo,
                                             std::function<std::optional<Rect>()> viewRectOnScreen)
    : teleportManager_(teleportManager),
      displayInfo_(displayInfo),
      viewRectOnScreen_(std::move(viewRectOnScreen)),
      timer_(scheduler, pointer, updateInterval, [this] { updatePosition(); }) {}

// The display's bounds are read once here, as the teleport manager reads them: a rearrangement
// of the displays is noticed the next time the mirror is shown.
void ScreenPositionTracker::startTracking(std::uint32_t displayId) {
  stopTracking();
  displaySize_ = displayInfo_.bounds(displayId).size();
  timer_.start();
}

void ScreenPositionTracker::stopTracking() {
  timer_.stop();
}

// The view's rectangle comes in root coordinates, top-left origin: no flip against the main
// screen's height is needed. An unplugged display has empty bounds, and so an empty picture
// rectangle: no jump can happen.
void ScreenPositionTracker::updatePosition() {
  const auto view = viewRectOnScreen_();
  if (!view) return;
  const Rect fit = mirrorPictureRect(displaySize_, view->size());
  teleportManager_.updateMirrorRect(
      fit.isEmpty() ? Rect{} : Rect{view->x + fit.x, view->y + fit.y, fit.width, fit.height});
}

}  // namespace orlet
