#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/WindowServer.h"

namespace orlet::test {

// A tiny window system: top-level windows in one stacking list, front to back, that panels and
// simulated applications share. A window of a higher level always stays in front of every
// window of a lower one, as floating panels do over normal windows. Windows are created hidden.
class FakeWindowServer final : public WindowServer {
 public:
  std::optional<std::vector<WindowInfo>> onScreenWindows() const override;
  Point pointerLocation() const override { return pointer_; }
  std::uint32_t pressedMouseButtons() const override { return buttons_; }

  void movePointer(Point location) { pointer_ = location; }
  void setPressedButtons(std::uint32_t buttons) { buttons_ = buttons; }
  // Simulates a server that cannot hand out its window list.
  void setWindowListAvailable(bool available) { listAvailable_ = available; }

  WindowNumber createWindow(ProcessId owner, Rect bounds, int level = 0);
  // Creates a window, shows it and raises it: a window another application opens.
  WindowNumber openWindow(ProcessId owner, Rect bounds);
  void destroyWindow(WindowNumber number);

  void raise(WindowNumber number);  // shows it in front of its level
  void lower(WindowNumber number);  // shows it behind everything of its level
  // Shows `number` directly above `sibling`, or in front when there is no such sibling.
  void placeAbove(WindowNumber number, WindowNumber sibling);
  void hide(WindowNumber number);
  // Activation raises all of an application's windows, keeping their order.
  void raiseWindowsOf(ProcessId owner);

  bool isShown(WindowNumber number) const;
  int level(WindowNumber number) const;
  void setLevel(WindowNumber number, int level);
  Rect bounds(WindowNumber number) const;
  void setBounds(WindowNumber number, Rect bounds);
  // Entirely covered by one shown window in front of it.
  bool isCovered(WindowNumber number) const;

  // The shown windows, front to back.
  std::vector<WindowNumber> stacking() const;

 private:
  struct Window {
    WindowNumber number = 0;
    ProcessId owner = 0;
    Rect bounds;
    int level = 0;
    bool shown = false;
  };

  Window* find(WindowNumber number);
  const Window* find(WindowNumber number) const;
  Window take(WindowNumber number);
  void restack();

  std::vector<Window> windows_;  // front to back, hidden ones included
  WindowNumber nextNumber_ = 0x400001;
  Point pointer_;
  std::uint32_t buttons_ = 0;
  bool listAvailable_ = true;
};

}  // namespace orlet::test
