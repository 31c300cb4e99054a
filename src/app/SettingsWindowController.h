#pragma once

#include "app/SharedInstance.h"

namespace orlet {

// The settings panel in which the shortcut is recorded. This base shows nothing; the real
// controller is installed as the shared instance.
class SettingsWindowController {
 public:
  SettingsWindowController() = default;
  SettingsWindowController(const SettingsWindowController&) = delete;
  SettingsWindowController& operator=(const SettingsWindowController&) = delete;
  virtual ~SettingsWindowController() = default;

  static SettingsWindowController& shared() {
    return SharedInstance<SettingsWindowController>::get();
  }

  // Shows the settings panel, creating it on first use.
  virtual void showSettings() {}
};

}  // namespace orlet
