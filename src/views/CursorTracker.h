#pragma once

#include <cstdint>

#include "foundation/Lifetime.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "platform/CursorSource.h"
#include "platform/WindowServer.h"
#include "views/DisplayPreviewModel.h"
#include "views/SamplingTimer.h"

namespace orlet {

// Samples the system cursor (image and hot spot) and the pointer sixty times a second (once a
// second while the pointer is still, and at once when the cursor changes shape under it) and
// publishes them when they change, so that the mirror can draw the cursor where the real pointer
// stands. The position is global: which display it is on is for the mirror to decide. Main thread
// only.
class CursorTracker final : public PreviewCompanion {
 public:
  static constexpr Seconds sampleInterval{1.0 / 60};

  CursorTracker(Scheduler& scheduler, const CursorSource& cursor, const WindowServer& pointer);

  Published<CursorImageRef> cursorImage;
  Published<Point> hotSpot;
  Published<Point> mouseScreenPosition;

  // The display is not needed: the position is reported for every display. A second start
  // neither restarts nor doubles the sampling.
  void startTracking(std::uint32_t displayId);
  // Safe when not tracking; the last published values stay.
  void stopTracking();
  bool isTracking() const { return timer_.isRunning(); }

  void start(const Display& display) override { startTracking(display.displayID); }
  void stop() override { stopTracking(); }

 private:
  void updateCursor();

  Scheduler& scheduler_;
  const CursorSource& cursor_;
  const WindowServer& pointer_;
  struct Sample {
    CursorImageRef cursor;
    Point position;
  };

  Sample sampled_;  // the last sample handed on for publication
  Subscription shapes_;
  Lifetime lifetime_;
  SamplingTimer timer_;
};

}  // namespace orlet
