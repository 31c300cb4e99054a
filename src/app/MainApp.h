#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/FloatingButtonGestures.h"
#include "foundation/Lifetime.h"
#include "foundation/NotificationCenter.h"
#include "foundation/Scheduler.h"
#include "foundation/UserDefaults.h"
#include "platform/Menu.h"
#include "platform/Panel.h"
#include "platform/StatusBar.h"
#include "platform/WindowServer.h"
#include "window/CaptureOneFocus.h"
#include "window/FrontApplication.h"

namespace orlet {

// The application shell: builds the floating button, the status item and its menu, and joins
// the front-application changes and the shortcut to the mirror's controller. It holds what it
// builds for the life of the process; main.cpp runs the event loop afterwards.
class MainApp {
 public:
  struct Ports {
    PanelFactory& panels;
    StatusBar& statusBar;
    Application& application;
    const CaptureOneFocus& editor;
    const WindowServer& windowServer;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    UserDefaults& defaults;
  };

  explicit MainApp(const Ports& ports);
  MainApp(const MainApp&) = delete;
  MainApp& operator=(const MainApp&) = delete;
  ~MainApp();

  // The start-up sequence, in its fixed order. Throws std::runtime_error when the floating
  // button cannot be created.
  void start();

  // Shows the button only while the editor or this program is in front (always, while no editor
  // is known), hands activation back to the editor when this program came forward, and lets the
  // mirror follow.
  void handleFrontAppDidChange();

  Panel* buttonPanel() const { return buttonPanel_.get(); }
  std::shared_ptr<const Menu> statusMenu() const { return statusMenu_; }

 private:
  void createButtonPanel();
  void observeButtonMoves();
  void installGestures();
  void observeFrontApplication();
  void observeHotkey();
  void observeEditorChoice();
  void updateButtonVisibility(const FrontApplication& front);
  void toggleMirror();
  void reactivateEditor();

  Ports ports_;
  std::unique_ptr<Panel> buttonPanel_;
  std::shared_ptr<const Menu> statusMenu_;
  std::optional<FloatingButtonGestures> gestures_;
  std::vector<Subscription> subscriptions_;  // released before the button panel
  Lifetime lifetime_;
};

}  // namespace orlet
