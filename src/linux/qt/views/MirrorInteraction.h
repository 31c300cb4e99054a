#pragma once

#include <functional>

#include "foundation/Scheduler.h"
#include "platform/CursorSource.h"
#include "platform/DisplayInfo.h"
#include "platform/SyntheticInput.h"
#include "platform/WindowServer.h"
#include "window/CaptureOneFocus.h"

namespace orlet {
class DisplayManager;
}

namespace orlet::linux_qt {

class DisplayPreviewView;

// What makes the enlarged mirror interactive; everything must outlive the mirrors.
struct MirrorInteractionPorts {
  Scheduler& scheduler;
  const CursorSource& cursor;
  const WindowServer& windowServer;
  SyntheticInput& input;
  const CaptureOneFocus& editor;
  const DisplayInfoProvider& displayInfo;
  std::function<bool()> isWindowVisible;
  std::function<bool()> isWindowBeingMoved;
};

// Lays the click overlay and the cursor over `mirror`'s picture, and adds the cursor tracking,
// the pointer crossing and the picture's position probe to what it runs while shown. Clicks are
// replayed through `dm`.
void makeMirrorInteractive(DisplayPreviewView& mirror, DisplayManager& dm,
                           const MirrorInteractionPorts& ports);

}  // namespace orlet::linux_qt
