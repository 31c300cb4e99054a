#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "capture/VideoCaptureManager.h"
#include "foundation/Geometry.h"
#include "foundation/Lifetime.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "foundation/Subscription.h"
#include "platform/CaptureService.h"
#include "platform/DisplayInfo.h"

namespace orlet {

// Something the enlarged mirror runs while it is shown, next to its capture: the pointer
// tracking and the teleport checks. Started after the capture, stopped after it, in the order
// they were added; stop() must tolerate a missing start().
class PreviewCompanion {
 public:
  virtual ~PreviewCompanion() = default;
  virtual void start(const Display& display) = 0;
  virtual void stop() = 0;
};

// The logic of one display preview: a card of the grid (with its name and details) or the
// enlarged mirror. Owns its own capture, started when the view appears and stopped when it
// disappears. Main thread only.
class DisplayPreviewModel {
 public:
  static constexpr std::int64_t framesPerSecond = 30;
  // How often a preview whose display went away looks for it again.
  static constexpr Seconds returnCheckInterval{1};

  DisplayPreviewModel(Scheduler& scheduler, CaptureService& capture,
                      const DisplayInfoProvider& displayInfo, Display display, bool isExpanded,
                      std::function<void()> onBack, int displayIndex);
  DisplayPreviewModel(const DisplayPreviewModel&) = delete;
  DisplayPreviewModel& operator=(const DisplayPreviewModel&) = delete;

  const Display& display() const { return display_; }
  bool isExpanded() const { return isExpanded_; }
  int displayIndex() const { return displayIndex_; }
  // Kept for the owner; the preview never calls it.
  const std::function<void()>& onBack() const { return onBack_; }

  std::string displayName() const;
  std::string displayDetailedInfo() const;

  // The frame source; its currentFrame is what the view paints.
  VideoCaptureManager& cm() { return cm_; }

  // Whether the details popover is open; only the "•••" button toggles it, and the popover's
  // own dismissal closes it.
  Published<bool> showingInfo{false};
  void toggleInfo() { showingInfo.set(!showingInfo.get()); }

  // Where the picture lies in a view of `viewSize`: the rectangle every overlay shares.
  Rect pictureRect(Size viewSize) const;

  // Only the enlarged mirror runs companions.
  void addCompanion(std::unique_ptr<PreviewCompanion> companion);

  // Appearing starts the capture; a display lost meanwhile is captured again, by itself, once
  // the service lists the same display again.
  void appear();
  void disappear();

 private:
  void watchForReturn(bool lost);
  void lookForDisplay();

  Scheduler& scheduler_;
  CaptureService& capture_;
  Display display_;
  bool isExpanded_;
  std::function<void()> onBack_;
  int displayIndex_;
  const DisplayInfoProvider& displayInfo_;
  VideoCaptureManager cm_;
  std::vector<std::unique_ptr<PreviewCompanion>> companions_;
  ScopedWorkItem returnCheck_;
  bool querying_ = false;
  Subscription lostWatch_;
  Lifetime lifetime_;
};

}  // namespace orlet
