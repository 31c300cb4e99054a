#include "window/NonActivatingPanel.h"

namespace orlet {
namespace {

bool isPress(MouseEventType type) {
  return type == MouseEventType::leftDown || type == MouseEventType::rightDown ||
         type == MouseEventType::otherDown;
}

}  // namespace

Subscription handActivationBackOnPress(Panel& panel, Scheduler& scheduler,
                                       const CaptureOneFocus& editor) {
  return panel.addMouseMonitor([&scheduler, &editor](const MouseEvent& event) {
    if (isPress(event.type)) scheduler.async([&editor] { editor.activateIfRunning(); });
    return EventDisposition::pass;
  });
}

}  // namespace orlet
