#include "app/MainApp.h"

#include <stdexcept>

#include "app/AppMenuActions.h"
#include "app/FloatingButtonPanel.h"
#include "app/StatusMenu.h"
#include "settings/HotkeyManager.h"
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
  FloatingButtonPanel::restorePosition(*buttonPanel_, ports_.defaults,
                                       ports_.windowServer.screens());
  observeButtonMoves();
  installGestures();
  observeFrontApplication();
  HotkeyManager::shared().registerHotkey();
  observeHotkey();
  observeEditorChoice();
  handleFrontAppDidChange();
  // Last, so that the button is visible at launch even when the evaluation above hid it.
  buttonPanel_->orderFrontRegardless();
}

void MainApp::createButtonPanel() {
  buttonPanel_ = ports_.panels.createPanel(FloatingButtonPanel::config());
  if (!buttonPanel_) throw std::runtime_error("le bouton flottant ne peut pas être créé");
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
  subscriptions_.push_back(ports_.editor.workspace().observeDidActivateApplication(
      [this] { ports_.scheduler.async(lifetime_.guard([this] { handleFrontAppDidChange(); })); }));
}

void MainApp::observeHotkey() {
  subscriptions_.push_back(ports_.notifications.observe(notification::hotkeyPressed, [this] {
    toggleMirror();
    reactivateEditor();
  }));
}

// A new choice takes effect at once: the button follows the new editor, and a pinned mirror is
// stacked above it. The front application itself has not changed, so an unpinned mirror stays;
// but should this program have kept the front for want of an editor, the new one gets it.
void MainApp::observeEditorChoice() {
  subscriptions_.push_back(ports_.editor.choice().observe([this] {
    const auto front = FrontApplication::read(ports_.editor);
    if (front.isOurs) reactivateEditor();
    updateButtonVisibility(front);
    WindowController::shared().editorChoiceDidChange();
  }));
}

void MainApp::toggleMirror() {
  auto& controller = WindowController::shared();
  if (controller.toggleWindow(buttonPanel_.get())) controller.bringToFront();
}

void MainApp::reactivateEditor() {
  ports_.editor.activateIfRunning();
}

void MainApp::handleFrontAppDidChange() {
  const auto front = FrontApplication::read(ports_.editor);
  if (front.isOurs) reactivateEditor();
  updateButtonVisibility(front);
  WindowController::shared().handleFrontAppChange(front.nameLowercased, front.isOurs);
}

// With no editor to follow, the button stays, or nothing would be left to open the mirror with.
void MainApp::updateButtonVisibility(const FrontApplication& front) {
  if (front.isEditor || front.isOurs || !ports_.editor.isEditorKnown()) {
    buttonPanel_->orderFrontRegardless();
  } else {
    buttonPanel_->orderOut();
  }
}

}  // namespace orlet
