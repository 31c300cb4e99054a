#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Geometry.h"
#include "foundation/Lifetime.h"
#include "foundation/NotificationCenter.h"
#include "foundation/Scheduler.h"
#include "foundation/UserDefaults.h"
#include "platform/Panel.h"
#include "platform/WindowServer.h"
#include "window/CaptureOneFocus.h"

namespace orlet {

namespace window_defaults {
inline constexpr char positionX[] = "secondaryWindowPositionX";
inline constexpr char positionY[] = "secondaryWindowPositionY";
inline constexpr char width[] = "secondaryWindowWidth";
inline constexpr char height[] = "secondaryWindowHeight";
inline constexpr char pinned[] = "secondaryWindowPinned";
}  // namespace window_defaults

// Owns the mirror window: creates it hidden on first use, shows and hides it on request, keeps
// its frame and pin state in the defaults, tracks drags of it, and decides on every change of
// the front application whether it stays on screen and where it is stacked.
class WindowController {
 public:
  struct Ports {
    PanelFactory& panels;
    const CaptureOneFocus& editor;
    const WindowServer& windowServer;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    UserDefaults& defaults;
  };

  static constexpr Size defaultSize{900, 600};
  static constexpr Size minimumSize{200, 100};
  // How long after the last move report, with the button up, a drag counts as over.
  static constexpr Seconds moveEndDelay{0.2};
  // Lets a newly activated application finish raising its own windows before the mirror is
  // stacked relative to them.
  static constexpr Seconds placementDelay{0.05};

  explicit WindowController(const Ports& ports);
  WindowController(const WindowController&) = delete;
  WindowController& operator=(const WindowController&) = delete;
  ~WindowController();

  static WindowController& shared();

  // Creates the hidden window once; no-op afterwards or when no panel can be created.
  void ensureWindow();
  Panel* secondaryWindow() const { return secondaryWindow_.get(); }

  // Hides the window when the user can see it, otherwise shows it (beside `anchor` until a
  // position has been saved). Returns true when it has just shown it.
  bool toggleWindow(const Panel* anchor);
  void bringToFront();

  bool isWindowVisible() const;
  // Visible, not minimised, not under the editor (unless pinned), and not entirely covered.
  bool isWindowEffectivelyVisible(const Panel& window) const;
  bool userWantsWindowVisible() const { return userWantsWindowVisible_; }

  // True from the first move of a drag until the left button has been up for moveEndDelay.
  bool isWindowBeingMoved() const { return isWindowBeingMoved_; }
  bool isLeftMouseDown() const;
  void windowWillMove();
  void windowDidMove();

  void backButtonClicked();

  Color backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(Color color);

  // Pinned: the mirror stays visible while another application is in front, stacked directly
  // above the editor's top window. Every change is saved, then applied.
  bool isPinned() const { return isPinned_; }
  void setPinned(bool pinned);
  void togglePin();
  void applyPinState();
  void updatePinButtonAppearance();

  void handleFrontAppChange(std::string_view appNameLowercased, bool isOurAppFront);
  // Another editor was chosen: the pin button names it, and a pinned mirror is stacked above it.
  void editorChoiceDidChange();
  bool lastFrontAppWasCaptureOne() const { return lastFrontAppWasCaptureOne_; }
  // Recorded when the editor loses the front; nothing reads it yet.
  bool wasVisibleBeforeLeavingCaptureOne() const { return wasVisibleBeforeLeavingCaptureOne_; }

  bool isCaptureOneFront() const;
  // The editor's frontmost on-screen window larger than 50 x 50, skipping its palettes.
  std::optional<WindowNumber> getTopCaptureOneWindowNumber() const;
  bool isCaptureOneAboveWindow(const Panel& window) const;

 private:
  enum class Fallback { front, back };

  PanelConfig windowConfig() const;
  void addOverlayButtons(Panel& window);
  void restoreFrame(Panel& window) const;
  void observeWindow(Panel& window);
  void placeBeside(const Panel& anchor);
  void beginWindowMove();
  void markWindowMoving();
  void followFrontApp(bool isCaptureOne, bool isOurAppFront);
  bool isStillPinnedAndWanted() const;
  void placeAboveCaptureOne(Fallback fallback);
  void updatePinToolTip();
  std::optional<Point> savedOrigin(Size size) const;

  Ports ports_;
  Color backgroundColor_ = Color::clear();
  bool isPinned_ = false;
  bool userWantsWindowVisible_ = false;
  bool isWindowBeingMoved_ = false;
  ScopedWorkItem moveEndWorkItem_;
  bool wasVisibleBeforeLeavingCaptureOne_ = false;
  bool lastFrontAppWasCaptureOne_ = false;
  std::unique_ptr<Panel> secondaryWindow_;
  std::unique_ptr<PanelButton> backButton_;
  std::unique_ptr<PanelButton> pinButton_;
  std::string pinToolTip_;
  std::vector<Subscription> subscriptions_;  // released before the buttons and the window
  Lifetime lifetime_;
};

}  // namespace orlet
