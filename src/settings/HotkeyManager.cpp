#include "settings/HotkeyManager.h"

#include "foundation/UpperCase.h"
#include "settings/ShortcutDefaults.h"
#include "settings/ShortcutNames.h"

namespace orlet {
namespace {

// The saved names, upper-cased; an empty name stays, and names no key.
std::set<std::string> splitNames(const std::string& joined) {
  std::set<std::string> names;
  for (const auto& name : splitKeyNames(joined)) names.insert(upperCased(name));
  return names;
}

}  // namespace

void HotkeyManager::registerHotkey() {
  unregisterHotkey();
  if (!ports_) return;
  const auto chars = ports_->defaults.string(shortcut_defaults::chars).value_or("");
  savedModifiers_ = ports_->defaults.integer(shortcut_defaults::modifiers);
  if (chars.empty()) return;
  savedChars_ = splitNames(chars);
  // A name lost in the text (an old "++A" for keypad plus and A) would leave the other keys
  // grabbed from every application for a shortcut that can never fire.
  if (savedChars_.count("")) {
    ports_->out << "orlet: le raccourci enregistré « " << chars
                << " » nomme une touche illisible ; il n'est pas activé" << std::endl;
    return;
  }
  pressedChars_.clear();
  triggered_ = false;
  auto swallowed = ports_->hook.swallow(savedChars_, savedModifiers_);
  if (!swallowed) {
    ports_->out << "Impossible de créer l'event tap - vérifiez les permissions d'accessibilité"
                << std::endl;
    return;
  }
  swallowed_ = std::move(*swallowed);
  eventTap_ = ports_->hook.watch([this](const KeyEvent& event) { handleKeyEvent(event); });
}

void HotkeyManager::unregisterHotkey() {
  eventTap_.cancel();
  swallowed_.cancel();
  pressedChars_.clear();
  triggered_ = false;
}

EventDisposition HotkeyManager::handleKeyEvent(const KeyEvent& event) {
  if (event.type == KeyEventType::modifiersChanged) {
    pressedChars_.clear();
    triggered_ = false;
    return EventDisposition::pass;
  }
  const auto name = upperCased(event.characters);
  if (name.empty()) return EventDisposition::pass;
  if (event.modifiers != savedModifiers_) {
    pressedChars_.clear();
    return EventDisposition::pass;
  }
  if (!savedChars_.contains(name)) return EventDisposition::pass;
  return handleKey(event, name);
}

EventDisposition HotkeyManager::handleKey(const KeyEvent& event, const std::string& name) {
  if (event.type == KeyEventType::keyDown) {
    if (event.isRepeat) return EventDisposition::swallow;
    pressedChars_.insert(name);
    if (pressedChars_ == savedChars_ && ports_) {
      // Observers run after the hook has had its answer, outside its callback.
      auto& notifications = ports_->notifications;
      ports_->scheduler.async(
          lifetime_.guard([&notifications] { notifications.post(notification::hotkeyPressed); }));
    }
    return EventDisposition::swallow;
  }
  pressedChars_.erase(name);
  if (pressedChars_.empty()) triggered_ = false;
  return EventDisposition::swallow;
}

}  // namespace orlet
