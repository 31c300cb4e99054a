#include "app/MainApp.h"

#include <stdexcept>

#include "app/AppMenuActions.h"
#include "app/FloatingButtonPanel.h"
#include "app/StatusMenu.h"
#include "settings/HotkeyManager.h"
#include "window/CaptureOneFocus.h"
#include "window/FrontApplication.h"
#include "window/WindowController.h"

namespace orlet {

MainApp::MainApp(const Ports& ports) : ports_(ports) {}

MainApp::~MainApp() = default;

// Not having a taskbar entry needs no step here: every panel the adapters make skips the
// taskbar and the pager.
void MainApp::start() {
  createButtonPanel();
  statusMenu_ = makeStatusMenu(AppMenuActions::shared(), ports_.application);
  ports_.statusBar.createStatusItem(statusItemIcon(), statusMenu_);
  FloatingButtonPanel::restorePosition(*buttonPanel_, ports_.defaults);
  observeButtonMoves();
  installGestures();
  observeFrontApplication();
  HotkeyManager::shared().registerHotkey();
  observeHotkey();
  handleFrontAppDidChange();
  // Last, so that the button is visible at launch even when the evaluation above hid it.
  buttonPanel_->orderFrontRegardless();
}

void MainApp::createButtonPanel() {
  buttonPanel_ = ports_.panels.createPanel(FloatingButtonPanel::config());
  if (!buttonPanel_) throw std::runtime_error("cannot create the floating button");
}

void MainApp::observeButtonMoves() {
  subscriptions_.push_back(buttonPanel_->observe(PanelEvent::didMove, [this] {
    FloatingButtonPanel::savePosition(*buttonPanel_, ports_.defaults);
  }));
}

void MainApp::installGestures() {
  gestures_.emplace(FloatingButtonGestures::Actions{
      .toggleMirror = [this] { toggleMirror(); },
      .reactivateEditor = [this] { reactivateEditor(); },
      .showMenu = [this](Point at) { ports_.statusBar.popUpMenu(statusMenu_, at); },
  });
  subscriptions_.push_back(buttonPanel_->addMouseMonitor(
      [this](const MouseEvent& event) { return gestures_->handle(event); }));
}

// The notification arrives while the activation is still settling; one more turn of the main
// queue lets the front application be read as it ends up.
void MainApp::observeFrontApplication() {
  subscriptions_.push_back(ports_.workspace.observeDidActivateApplication(
      [this] { ports_.scheduler.async(lifetime_.guard([this] { handleFrontAppDidChange(); })); }));
}

void MainApp::observeHotkey() {
  subscriptions_.push_back(ports_.notifications.observe(notification::hotkeyPressed, [this] {
    toggleMirror();
    reactivateEditor();
  }));
}

void MainApp::toggleMirror() {
  auto& controller = WindowController::shared();
  if (controller.toggleWindow(buttonPanel_.get())) controller.bringToFront();
}

void MainApp::reactivateEditor() {
  CaptureOneFocus::activateIfRunning(ports_.workspace);
}

void MainApp::handleFrontAppDidChange() {
  const auto front = FrontApplication::read(ports_.workspace);
  if (front.isOurs) reactivateEditor();
  if (front.isCaptureOne || front.isOurs) {
    buttonPanel_->orderFrontRegardless();
  } else {
    buttonPanel_->orderOut();
  }
  WindowController::shared().handleFrontAppChange(front.nameLowercased, front.isOurs);
}

}  // namespace orlet
