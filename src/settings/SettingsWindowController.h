#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/SharedInstance.h"
#include "foundation/Lifetime.h"
#include "foundation/Scheduler.h"
#include "platform/SettingsPanel.h"
#include "settings/ShortcutRecorderManager.h"
#include "window/CaptureOneFocus.h"

namespace orlet {

// The "Paramètres" panel in which the shortcut is recorded: one panel, brought forward while it
// is visible, made anew once closed. Every click released in it hands activation back to the
// editor.
class SettingsWindowController {
 public:
  struct Ports {
    SettingsPanelFactory& panels;
    Scheduler& scheduler;
    const CaptureOneFocus& editor;
    ShortcutRecorderManager& recorder;
  };

  // Without a panel factory: shows nothing.
  SettingsWindowController() = default;
  explicit SettingsWindowController(const Ports& ports) : ports_(ports) {}
  SettingsWindowController(const SettingsWindowController&) = delete;
  SettingsWindowController& operator=(const SettingsWindowController&) = delete;
  virtual ~SettingsWindowController() = default;

  static SettingsWindowController& shared() {
    return SharedInstance<SettingsWindowController>::get();
  }

  // Brings the visible panel forward as it is, or opens a new one on the saved shortcut.
  virtual void showSettings();

  SettingsPanel* window() const { return window_.get(); }

 private:
  void windowWillClose();

  std::optional<Ports> ports_;
  std::unique_ptr<SettingsPanel> window_;
  std::vector<Subscription> subscriptions_;  // released before the panel
  Lifetime lifetime_;
};

}  // namespace orlet
