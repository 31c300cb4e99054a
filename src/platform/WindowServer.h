#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "foundation/Geometry.h"
#include "foundation/Subscription.h"
#include "platform/Workspace.h"

namespace orlet {

// Identifies a top-level window on the window server (the X client window). 0 is no window.
using WindowNumber = std::uint32_t;

struct WindowInfo {
  ProcessId ownerPid = 0;
  WindowNumber number = 0;
  Rect bounds;  // global coordinates, decorations included
  friend bool operator==(const WindowInfo&, const WindowInfo&) = default;
};

// A display switched on, as windows are placed on it.
struct ScreenArea {
  Rect frame;         // global coordinates
  Rect visibleFrame;  // the part not reserved by the desktop's panels and docks
  bool isMain = false;
  friend bool operator==(const ScreenArea&, const ScreenArea&) = default;
};

// Mouse buttons as pressedMouseButtons() reports them.
namespace mouse_button {
inline constexpr std::uint32_t left = 1u << 0;
inline constexpr std::uint32_t right = 1u << 1;
inline constexpr std::uint32_t middle = 1u << 2;
}  // namespace mouse_button

class WindowServer {
 public:
  virtual ~WindowServer() = default;

  // Windows shown on the current desktop, front to back, desktop and dock elements excluded;
  // nullopt when the list cannot be had.
  virtual std::optional<std::vector<WindowInfo>> onScreenWindows() const = 0;

  // The displays switched on, the main one first; empty when they cannot be had.
  virtual std::vector<ScreenArea> screens() const = 0;

  // The pointer, in global coordinates.
  virtual Point pointerLocation() const = 0;

  // The buttons held down now, as mouse_button bits.
  virtual std::uint32_t pressedMouseButtons() const = 0;

  // Calls `observer` on the main thread when the pointer has had input (motion, a button) since
  // it was last read, or a reading finds it moved: once per reading, not for every report of a
  // moving mouse. It may be called from within a reading.
  [[nodiscard]] virtual Subscription observePointerInput(std::function<void()> observer) const = 0;
  // Whether observePointerInput reports input at all; without it, a still pointer cannot be
  // told from one that moved unseen.
  virtual bool reportsPointerInput() const = 0;
};

}  // namespace orlet
