#include "window/NonActivatingPanel.h"

#include "window/CaptureOneFocus.h"

namespace orlet {
namespace {

bool isPress(MouseEventType type) {
  return type == MouseEventType::leftDown || type == MouseEventType::rightDown ||
         type == MouseEventType::otherDown;
}

}  // namespace

Subscription handActivationBackOnPress(Panel& panel, Scheduler& scheduler, Workspace& workspace) {
  return panel.addMouseMonitor([&scheduler, &workspace](const MouseEvent& event) {
    if (isPress(event.type)) {
      scheduler.async([&workspace] { CaptureOneFocus::activateIfRunning(workspace); });
    }
    return EventDisposition::pass;
  });
}

}  // namespace orlet
