#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Geometry.h"
#include "foundation/Subscription.h"
#include "platform/Drawing.h"
#include "platform/WindowServer.h"

namespace orlet {

// Stacking level: floating panels stay above normal windows.
enum class PanelLevel { normal = 0, floating = 3 };

enum class MouseEventType { leftDown, leftDragged, leftUp, rightDown, otherDown };

struct MouseEvent {
  MouseEventType type = MouseEventType::leftDown;
  Point locationInWindow;  // relative to the panel's top-left corner
  Point screenLocation;    // global coordinates
};

enum class EventDisposition { pass, swallow };

enum class PanelEvent {
  willMove,   // the user started moving the panel
  didMove,    // its origin changed
  didResize,  // its size changed
};

// Tints of a panel button's symbol.
enum class ButtonTint { secondaryLabel, controlAccent };

enum class PanelCorner { topLeading, topTrailing };

// A small icon button laid over the panel's content, a fixed distance from one corner.
struct PanelButtonConfig {
  std::string symbol;  // symbol name, e.g. "arrow.left", "pin.fill"; the adapter maps it to an icon
  std::string accessibilityDescription;
  std::string toolTip;
  ButtonTint tint = ButtonTint::secondaryLabel;
  PanelCorner corner = PanelCorner::topLeading;
  double size = 22;
  double margin = 8;
  bool hidden = false;
};

class PanelButton {
 public:
  virtual ~PanelButton() = default;
  virtual void setHidden(bool hidden) = 0;
  virtual bool isHidden() const = 0;
  virtual void setSymbol(const std::string& symbol, ButtonTint tint) = 0;
  virtual void setToolTip(const std::string& toolTip) = 0;
  [[nodiscard]] virtual Subscription onClick(std::function<void()> handler) = 0;
};

// A borderless panel that never takes keyboard focus: clicking it leaves the active application
// active. Frames are in global coordinates, top-left origin.
class Panel {
 public:
  virtual ~Panel() = default;

  // The window server's number for this panel (comparable with WindowInfo::number); 0 if none.
  virtual WindowNumber windowNumber() const = 0;

  virtual void orderFrontRegardless() = 0;            // show and raise, without activating
  virtual void orderOut() = 0;                        // hide
  virtual void orderBack() = 0;                       // show, below every other window
  virtual void orderAbove(WindowNumber sibling) = 0;  // show, directly above `sibling`

  virtual bool isVisible() const = 0;           // mapped
  virtual bool isMiniaturized() const = 0;      // minimised by the window manager
  virtual bool isOcclusionVisible() const = 0;  // some part is not covered by other windows

  virtual PanelLevel level() const = 0;
  virtual void setLevel(PanelLevel level) = 0;

  virtual Rect frame() const = 0;
  virtual void setFrame(Rect frame) = 0;
  virtual void setFrameOrigin(Point origin) = 0;

  virtual void setBackgroundColor(Color color) = 0;

  [[nodiscard]] virtual Subscription observe(PanelEvent event, std::function<void()> handler) = 0;

  // `monitor` sees each mouse press, drag and release on the panel before the panel handles it;
  // returning swallow stops the event there.
  [[nodiscard]] virtual Subscription addMouseMonitor(
      std::function<EventDisposition(const MouseEvent&)> monitor) = 0;

  virtual std::unique_ptr<PanelButton> addButton(const PanelButtonConfig& config) = 0;
};

// What a panel hosts; the adapter builds the matching content.
enum class PanelContent { floatingButton, mirror };

struct PanelConfig {
  PanelContent content = PanelContent::mirror;
  Size contentSize;
  std::optional<Size> minimumSize;
  PanelLevel level = PanelLevel::normal;
  bool resizable = false;
  bool movableByBackground = true;
  bool joinsAllSpaces = true;  // shown on every virtual desktop
  bool hasShadow = false;
  std::optional<Drawing> face;  // drawn as the whole content, clipped to its shape
  std::string toolTip;          // shown while the pointer rests on the panel; empty for none
};

class PanelFactory {
 public:
  virtual ~PanelFactory() = default;
  // A hidden panel; nullptr when it cannot be created.
  virtual std::unique_ptr<Panel> createPanel(const PanelConfig& config) = 0;
};

}  // namespace orlet
