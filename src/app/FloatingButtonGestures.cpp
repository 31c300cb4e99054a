#include "app/FloatingButtonGestures.h"

#include <utility>

namespace orlet {

FloatingButtonGestures::FloatingButtonGestures(Actions actions) : actions_(std::move(actions)) {}

EventDisposition FloatingButtonGestures::handle(const MouseEvent& event) {
  switch (event.type) {
    case MouseEventType::leftDown:
      dragged_ = false;
      pressLocation_ = event.screenLocation;
      break;
    case MouseEventType::leftDragged:
      if (distance(event.screenLocation, pressLocation_) > dragThreshold) dragged_ = true;
      break;
    case MouseEventType::leftUp:
      // A release far from the press is a drag even when no motion came in between.
      if (distance(event.screenLocation, pressLocation_) > dragThreshold) dragged_ = true;
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
