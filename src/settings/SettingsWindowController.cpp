#include "settings/SettingsWindowController.h"

namespace orlet {

void SettingsWindowController::showSettings() {
  if (!ports_) return;
  if (window_ && window_->isVisible()) {
    window_->orderFrontRegardless();
    return;
  }
  ports_->recorder.loadFromDefaults();
  auto panel = ports_->panels.createSettingsPanel(lifetime_.guard([this] {
    if (window_) window_->close();
  }));
  if (!panel) return;
  subscriptions_.clear();
  window_ = std::move(panel);
  subscriptions_.push_back(window_->observeWillClose([this] { windowWillClose(); }));
  const auto& editor = ports_->editor;
  auto& scheduler = ports_->scheduler;
  subscriptions_.push_back(window_->observeLeftMouseUp(
      [&scheduler, &editor] { scheduler.async([&editor] { editor.activateIfRunning(); }); }));
  window_->orderFrontRegardless();
}

void SettingsWindowController::windowWillClose() {
  ports_->recorder.stopRecording();
}

}  // namespace orlet
