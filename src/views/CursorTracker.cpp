#include "views/CursorTracker.h"

namespace orlet {

CursorTracker::CursorTracker(Scheduler& scheduler, const CursorSource& cursor,
                             const WindowServer& pointer)
    : scheduler_(scheduler),
      cursor_(cursor),
      pointer_(pointer),
      timer_(scheduler, pointer, sampleInterval, [this] { updateCursor(); }) {}

void CursorTracker::startTracking(std::uint32_t) {
  if (isTracking()) return;
  timer_.start();
  // A new shape under a resting pointer (a busy cursor, say) is drawn at once, not at the next
  // still sample.
  shapes_ = cursor_.observeChanges(lifetime_.guard([this] { timer_.sampleSoon(); }));
}

void CursorTracker::stopTracking() {
  timer_.stop();
  shapes_ = Subscription();
}

// The pointer is read in root coordinates, top-left origin, the system the mirror uses: no
// flip against the main screen's height is needed.
void CursorTracker::updateCursor() {
  CursorImageRef cursor = cursor_.currentCursor();
  if (!cursor) return;
  const Point position = pointer_.pointerLocation();
  // A still pointer under an unchanged cursor would tell the mirror nothing new: no hop, no
  // placement, no repaint.
  if (cursor == sampled_.cursor && position == sampled_.position) return;
  sampled_ = {cursor, position};
  scheduler_.async(lifetime_.guard([this, cursor = std::move(cursor), position] {
    const Point hot = cursor->hotSpot;
    cursorImage.set(cursor);
    hotSpot.set(hot);
    mouseScreenPosition.set(position);
  }));
}

}  // namespace orlet
