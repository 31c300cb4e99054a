#pragma once

#include <functional>

#include "foundation/NotificationCenter.h"
#include "foundation/Scheduler.h"
#include "platform/CaptureService.h"
#include "platform/DisplayInfo.h"
#include "platform/ScreenCapturePermission.h"

#include "capture/DisplayManager.h"

namespace orlet::linux_qt {

class DisplayPreviewView;

// What the mirror panel's views need from the rest of the program; all must outlive the views.
struct MirrorViewPorts {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  CaptureService& capture;
  ScreenCapturePermission& permission;
  const DisplayInfoProvider& displayInfo;
  // Whether the mirror panel is on screen now.
  std::function<bool()> isWindowVisible;
  // Called for every enlarged mirror before it is first shown: where the click forwarding,
  // the cursor overlay and the teleport probe attach their layers and companions. `dm` is the
  // selector's catalogue, shared by all its previews.
  std::function<void(DisplayPreviewView& mirror, DisplayManager& dm)> decorateMirror;
  // How the selector's catalogue replays clicks; none by default.
  ClickForwardingPorts clicks = {};
};

}  // namespace orlet::linux_qt
