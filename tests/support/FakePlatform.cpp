#include "support/FakePlatform.h"

#include "app/AppMenuActions.h"
#include "app/UpdateManager.h"
#include "settings/HotkeyManager.h"
#include "settings/SettingsWindowController.h"

namespace orlet::test {

FakePlatform::FakePlatform() {
  workspace.setOurIdentifier(ourApp().bundleIdentifier);
  workspace.launch(ourApp());
}

FakePlatform::~FakePlatform() {
  SharedInstance<WindowController>::reset();
  SharedInstance<AppMenuActions>::reset();
  SharedInstance<HotkeyManager>::reset();
  SharedInstance<SettingsWindowController>::reset();
  SharedInstance<UpdateManager>::reset();
}

WindowController::Ports FakePlatform::windowControllerPorts() {
  return {panels, editor, windowServer, scheduler, notifications, defaults};
}

MainApp::Ports FakePlatform::mainAppPorts() {
  return {panels, statusBar, application, editor, windowServer, scheduler, notifications, defaults};
}

void FakePlatform::installSharedWindowController() {
  SharedInstance<WindowController>::setFactory(
      [this] { return std::make_unique<WindowController>(windowControllerPorts()); });
}

RunningApplication FakePlatform::launch(const std::string& name, ProcessId pid, Rect bounds) {
  RunningApplication app{name, "com.example." + std::to_string(pid), pid};
  workspace.launch(app);
  windowServer.openWindow(pid, bounds);
  return app;
}

}  // namespace orlet::test
