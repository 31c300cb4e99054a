#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "app/SharedInstance.h"
#include "foundation/Lifetime.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "foundation/UserDefaults.h"
#include "platform/KeyboardHook.h"
#include "settings/HotkeyManager.h"

namespace orlet {

// Records a shortcut of at most three keys, modifiers included, shows it and saves it where the
// hotkey reads it. While it records, the hotkey is off and the keyboard is kept from the other
// applications, so the keys typed neither fire the old shortcut nor reach the editor.
class ShortcutRecorderManager {
 public:
  struct Ports {
    KeyboardHook& hook;
    UserDefaults& defaults;
    Scheduler& scheduler;
    HotkeyManager& hotkey;
  };

  explicit ShortcutRecorderManager(const Ports& ports) : ports_(ports) {}
  ShortcutRecorderManager(const ShortcutRecorderManager&) = delete;
  ShortcutRecorderManager& operator=(const ShortcutRecorderManager&) = delete;

  static ShortcutRecorderManager& shared() {
    return SharedInstance<ShortcutRecorderManager>::get();
  }

  // Beside the recorder when the saved shortcut could not be taken.
  static constexpr char takenMessage[] = "Raccourci déjà pris par un autre programme";

  void startRecording();
  // Ends a recording; a shown shortcut is saved and the hotkey registered again.
  void stopRecording();
  void clearShortcut();
  // Saves the shown shortcut, even an empty one (which switches the hotkey off).
  void saveToDefaults();
  void loadFromDefaults();

  // What the recorder button reads: the modifiers as ⌘⇧⌥⌃, then the key names joined by "+".
  std::string displayText() const;

  // The name a key is saved under: its name in the table of named keys, else what it types,
  // upper-cased; empty for a key that types nothing.
  static std::string charFromEvent(const KeyEvent& event);

  Published<bool> isRecording{false};
  Published<std::set<std::string>> currentChars;
  Published<std::int64_t> currentModifiers{0};
  Published<std::string> errorMessage;

 private:
  void handleKeyEvent(const KeyEvent& event);
  void handleKeyDown(const KeyEvent& event);
  void handleKeyUp(const KeyEvent& event);
  void onMainQueue(std::function<void()> work);
  void writeDefaults();
  void sayWhetherTaken();

  Ports ports_;
  Subscription monitor_;   // the session's keys, while recording
  Subscription keyboard_;  // the keyboard kept from the other applications, while recording
  std::set<std::string> recordingChars_;
  std::int64_t recordingModifiers_ = 0;
  std::set<std::string> maxCharsReached_;
  Lifetime lifetime_;
};

}  // namespace orlet
