#pragma once

#include <string>

#include "app/MainApp.h"
#include "foundation/DefaultsStore.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "support/FakeApplication.h"
#include "support/FakePanelFactory.h"
#include "support/FakeStatusBar.h"
#include "support/FakeWindowServer.h"
#include "support/FakeWorkspace.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "window/WindowController.h"

namespace orlet::test {

// Every port faked, on a virtual clock and in-memory defaults, with this program and the
// applications a test launches living on one fake desktop.
class FakePlatform {
 public:
  static constexpr ProcessId ourPid = 100;

  FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;
  // Destroys the shared controllers first: their panels live in this window server.
  ~FakePlatform();

  WindowController::Ports windowControllerPorts();
  MainApp::Ports mainAppPorts();
  // WindowController::shared() is then built on these fakes.
  void installSharedWindowController();

  RunningApplication ourApp() const { return {"ORLET", "orlet", ourPid}; }
  // A running application with one window of `bounds`, raised but not brought to the front.
  RunningApplication launch(const std::string& name, ProcessId pid,
                            Rect bounds = {0, 0, 1600, 1000});
  // Opens a further window of an application, in front of everything of its level.
  WindowNumber openWindow(ProcessId pid, Rect bounds) {
    return windowServer.openWindow(pid, bounds);
  }

  VirtualScheduler scheduler;
  NotificationCenter notifications;
  MemoryDefaultsStore store;
  UserDefaults defaults{store};
  FakeWindowServer windowServer;
  FakeWorkspace workspace{windowServer};
  FakePanelFactory panels{windowServer, ourPid};
  FakeStatusBar statusBar;
  FakeApplication application;
};

// Resets every shared controller.
void resetSharedInstances();

}  // namespace orlet::test
