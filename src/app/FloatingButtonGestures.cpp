#include "app/FloatingButtonGestures.h"

#include <utility>

namespace orlet {

FloatingButtonGestures::FloatingButtonGestures(const WindowServer& windowServer, Actions actions)
    : windowServer_(windowServer), actions_(std::move(actions)) {}

EventDisposition FloatingButtonGestures::handle(const MouseEvent& event) {
  switch (event.type) {
    case MouseEventType::leftDown:
      dragged_ = false;
      pressLocation_ = windowServer_.pointerLocation();
      break;
    case MouseEventType::leftDragged:
      if (distance(windowServer_.pointerLocation(), pressLocation_) > dragThreshold) {
        dragged_ = true;
      }
      break;
    case MouseEventType::leftUp:
      if (!dragged_) actions_.toggleMirror();
      actions_.reactivateEditor();
      break;
    case MouseEventType::rightDown:
      actions_.showMenu(event.screenLocation);
      return EventDisposition::swallow;  // neither a move nor a toggle
    case MouseEventType::otherDown:
      break;
  }
  return EventDisposition::pass;
}

}  // namespace orlet
