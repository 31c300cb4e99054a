#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <set>
#include <string>

#include "app/SharedInstance.h"
#include "foundation/Lifetime.h"
#include "foundation/NotificationCenter.h"
#include "foundation/Scheduler.h"
#include "foundation/UserDefaults.h"
#include "platform/KeyboardHook.h"
#include "platform/Panel.h"

namespace orlet {

// The session-wide shortcut: posts "hotkeyPressed" at the key-down that completes the saved
// set of keys under exactly the saved modifiers, and keeps those keys from every application
// while those modifiers are held, completed or not.
class HotkeyManager {
 public:
  struct Ports {
    KeyboardHook& hook;
    UserDefaults& defaults;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    std::ostream& out;  // where the one failure line goes
  };

  // Without a keyboard hook: registers nothing, so the program runs without a shortcut.
  HotkeyManager() = default;
  explicit HotkeyManager(const Ports& ports) : ports_(ports) {}
  HotkeyManager(const HotkeyManager&) = delete;
  HotkeyManager& operator=(const HotkeyManager&) = delete;
  virtual ~HotkeyManager() = default;

  static HotkeyManager& shared() { return SharedInstance<HotkeyManager>::get(); }

  // Replaces any earlier registration with the shortcut saved now. Nothing is hooked while no
  // key is saved; a hook the system refuses prints one line and leaves the program without one.
  virtual void registerHotkey();
  virtual void unregisterHotkey();

  // Every key event of the session; whether it is one of the shortcut's, kept from the
  // applications.
  EventDisposition handleKeyEvent(const KeyEvent& event);

  bool isRegistered() const { return eventTap_.isActive(); }
  const std::set<std::string>& savedChars() const { return savedChars_; }
  std::int64_t savedModifiers() const { return savedModifiers_; }
  // Only ever reset; kept for the state it documents (a partly typed shortcut was abandoned).
  bool triggered() const { return triggered_; }

 private:
  EventDisposition handleKey(const KeyEvent& event, const std::string& name);

  std::optional<Ports> ports_;
  Subscription eventTap_;
  Subscription swallowed_;
  std::set<std::string> pressedChars_;
  std::set<std::string> savedChars_;
  std::int64_t savedModifiers_ = 0;
  bool triggered_ = false;
  Lifetime lifetime_;
};

}  // namespace orlet
