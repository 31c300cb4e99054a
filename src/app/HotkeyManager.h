#pragma once

#include "app/SharedInstance.h"

namespace orlet {

// The global keyboard shortcut that posts "hotkeyPressed". This base registers nothing, so the
// app runs without a shortcut until a real manager is installed as the shared instance.
class HotkeyManager {
 public:
  HotkeyManager() = default;
  HotkeyManager(const HotkeyManager&) = delete;
  HotkeyManager& operator=(const HotkeyManager&) = delete;
  virtual ~HotkeyManager() = default;

  static HotkeyManager& shared() { return SharedInstance<HotkeyManager>::get(); }

  // Starts listening for the saved shortcut, replacing any earlier registration.
  virtual void registerHotkey() {}
};

}  // namespace orlet
