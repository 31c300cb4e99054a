#pragma once

#include <functional>

#include "foundation/Geometry.h"
#include "platform/Panel.h"

namespace orlet {

// Turns presses on the floating button into its three gestures: a click toggles the mirror, a
// drag moves the button (the panel moves itself; the gesture only has to not toggle), and a
// right-click opens the status menu.
class FloatingButtonGestures {
 public:
  struct Actions {
    std::function<void()> toggleMirror;      // toggle, raising the mirror when it was shown
    std::function<void()> reactivateEditor;  // after every release, drag or not
    std::function<void(Point)> showMenu;     // at a global point
  };

  // Strict: a release after moving exactly this far still counts as a click.
  static constexpr double dragThreshold = 3.0;

  explicit FloatingButtonGestures(Actions actions);

  // The button panel's mouse monitor. Locations are the events' own: by the time an event is
  // handled, the pointer may be far from where it was pressed (a flick, a loaded machine).
  EventDisposition handle(const MouseEvent& event);

  bool isDragging() const { return dragged_; }
  Point pressLocation() const { return pressLocation_; }

 private:
  Actions actions_;
  bool dragged_ = false;
  Point pressLocation_;
};

}  // namespace orlet
