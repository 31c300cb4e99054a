#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/MainApp.h"
#include "foundation/DefaultsStore.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "platform/StatusBar.h"
#include "settings/EditorChoice.h"
#include "support/FakePanel.h"
#include "support/FakeWindowServer.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "window/CaptureOneFocus.h"
#include "window/WindowController.h"

namespace orlet::test {

// A notification area that remembers what it was asked to show.
class FakeStatusBar final : public StatusBar {
 public:
  bool createStatusItem(const Drawing& icon, std::shared_ptr<const Menu> menu) override {
    this->icon = icon;
    this->menu = std::move(menu);
    return true;
  }
  void popUpMenu(std::shared_ptr<const Menu> menu, Point screenLocation) override {
    poppedUpMenu = std::move(menu);
    poppedUpAt = screenLocation;
  }

  std::optional<Drawing> icon;
  std::shared_ptr<const Menu> menu, poppedUpMenu;
  std::optional<Point> poppedUpAt;
};

class FakeApplication final : public Application {
 public:
  void terminate() override { terminated = true; }
  bool terminated = false;
};

// Every port faked, on a virtual clock and in-memory defaults, with this program and the
// applications a test launches living on one fake desktop.
class FakePlatform {
 public:
  static constexpr ProcessId ourPid = 100;

  FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;
  // Resets every shared controller first: their panels live in this window server.
  ~FakePlatform();

  WindowController::Ports windowControllerPorts();
  MainApp::Ports mainAppPorts();
  // WindowController::shared() is then built on these fakes.
  void installSharedWindowController();

  RunningApplication ourApp() const { return {"ORLET", "orlet", ourPid}; }
  // A running application with one window of `bounds`, raised but not brought to the front.
  RunningApplication launch(const std::string& name, ProcessId pid,
                            Rect bounds = {0, 0, 1600, 1000});

  VirtualScheduler scheduler;
  NotificationCenter notifications;
  MemoryDefaultsStore store;
  UserDefaults defaults{store};
  FakeWindowServer windowServer;
  FakeWorkspace workspace{windowServer};
  EditorChoice editorChoice{defaults};
  CaptureOneFocus editor{workspace, editorChoice};
  FakePanelFactory panels{windowServer, ourPid};
  FakeStatusBar statusBar;
  FakeApplication application;
};

}  // namespace orlet::test
