#pragma once

#include <functional>
#include <optional>

#include "foundation/Scheduler.h"
#include "platform/DisplayInfo.h"
#include "views/DisplayPreviewModel.h"
#include "views/MouseTeleportManager.h"
#include "views/SamplingTimer.h"

namespace orlet {

// Keeps the teleport manager told where the mirror's picture lies on the screen: every 0.03 s
// while the mirror is shown, the view's global rectangle with the display's aspect fitted
// inside it (the view may include letterbox bands). The mirror moves under the user's hands or
// the editor's, so a still pointer slows the updates down. Main thread only.
class ScreenPositionTracker final : public PreviewCompanion {
 public:
  static constexpr Seconds updateInterval{0.03};

  // `viewRectOnScreen`: the mirror view's rectangle in global coordinates; nullopt while it is
  // not in a window on screen.
  ScreenPositionTracker(Scheduler& scheduler, const WindowServer& pointer,
                        MouseTeleportManager& teleportManager,
                        const DisplayInfoProvider& displayInfo,
                        std::function<std::optional<Rect>()> viewRectOnScreen);

  void startTracking(std::uint32_t displayId);
  void stopTracking();

  void start(const Display& display) override { startTracking(display.displayID); }
  void stop() override { stopTracking(); }

 private:
  void updatePosition();

  MouseTeleportManager& teleportManager_;
  const DisplayInfoProvider& displayInfo_;
  std::function<std::optional<Rect>()> viewRectOnScreen_;
  Size displaySize_;
  SamplingTimer timer_;
};

}  // namespace orlet
