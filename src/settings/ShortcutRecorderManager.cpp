#include "settings/ShortcutRecorderManager.h"

#include <bit>
#include <map>

#include "foundation/UpperCase.h"
#include "settings/ShortcutDefaults.h"
#include "settings/ShortcutNames.h"

namespace orlet {
namespace {

constexpr std::int64_t allModifiers =
    modifier::command | modifier::shift | modifier::option | modifier::control;

const std::map<NamedKey, std::string>& namedKeys() {
  static const std::map<NamedKey, std::string> names{
      {NamedKey::f1, "F1"},           {NamedKey::f2, "F2"},     {NamedKey::f3, "F3"},
      {NamedKey::f4, "F4"},           {NamedKey::f5, "F5"},     {NamedKey::f6, "F6"},
      {NamedKey::f7, "F7"},           {NamedKey::f8, "F8"},     {NamedKey::f9, "F9"},
      {NamedKey::f10, "F10"},         {NamedKey::f11, "F11"},   {NamedKey::f12, "F12"},
      {NamedKey::f13, "F13"},         {NamedKey::f14, "F14"},   {NamedKey::f15, "F15"},
      {NamedKey::f16, "F16"},         {NamedKey::f17, "F17"},   {NamedKey::f18, "F18"},
      {NamedKey::f19, "F19"},         {NamedKey::f20, "F20"},   {NamedKey::space, "Espace"},
      {NamedKey::returnKey, "↩"},     {NamedKey::tab, "⇥"},     {NamedKey::backspace, "⌫"},
      {NamedKey::forwardDelete, "⌦"}, {NamedKey::escape, "⎋"},  {NamedKey::leftArrow, "←"},
      {NamedKey::rightArrow, "→"},    {NamedKey::upArrow, "↑"}, {NamedKey::downArrow, "↓"},
      {NamedKey::home, "↖"},          {NamedKey::end, "↘"},     {NamedKey::pageUp, "⇞"},
      {NamedKey::pageDown, "⇟"},
  };
  return names;
}

bool noModifierHeld(const KeyEvent& event) {
  return (event.modifiers & allModifiers) == 0;
}

// What the recorder button reads: each name as it is, joined by "+".
std::string joined(const std::set<std::string>& names) {
  std::string out;
  for (const auto& name : names) out += (out.empty() ? "" : "+") + name;
  return out;
}

}  // namespace

std::string ShortcutRecorderManager::charFromEvent(const KeyEvent& event) {
  const auto& names = namedKeys();
  if (auto it = names.find(event.namedKey); it != names.end()) return it->second;
  return upperCased(event.characters);
}

void ShortcutRecorderManager::startRecording() {
  stopRecording();
  isRecording.set(true);
  errorMessage.set("");
  recordingChars_.clear();
  recordingModifiers_ = 0;
  maxCharsReached_.clear();
  ports_.hotkey.unregisterHotkey();
  monitor_ = ports_.hook.watch(lifetime_.guard([this](const KeyEvent& e) { handleKeyEvent(e); }));
  keyboard_ = ports_.hook.takeKeyboard();
}

void ShortcutRecorderManager::stopRecording() {
  monitor_.cancel();
  keyboard_.cancel();
  isRecording.set(false);
  recordingChars_.clear();
  if (currentChars->empty()) return;
  writeDefaults();
  ports_.hotkey.registerHotkey();
  sayWhetherTaken();
}

void ShortcutRecorderManager::clearShortcut() {
  currentChars.set({});
  currentModifiers.set(0);
  errorMessage.set("");
  stopRecording();
}

void ShortcutRecorderManager::saveToDefaults() {
  writeDefaults();
  if (currentChars->empty()) {
    ports_.hotkey.unregisterHotkey();
  } else {
    ports_.hotkey.registerHotkey();
    sayWhetherTaken();
  }
}

void ShortcutRecorderManager::loadFromDefaults() {
  currentChars.set(splitKeyNames(ports_.defaults.string(shortcut_defaults::chars).value_or("")));
  currentModifiers.set(ports_.defaults.integer(shortcut_defaults::modifiers));
  errorMessage.set("");
  if (!*isRecording) sayWhetherTaken();
}

// Standard output, where the hotkey says it too, is seen by nobody who started ORLET from the
// menu: the recorder says it where the shortcut is chosen.
void ShortcutRecorderManager::sayWhetherTaken() {
  if (!currentChars->empty() && !ports_.hotkey.isRegistered()) errorMessage.set(takenMessage);
}

std::string ShortcutRecorderManager::displayText() const {
  const auto mask = *currentModifiers;
  if (currentChars->empty() && mask == 0) return "Cliquer pour définir";
  std::string text;
  if (mask & modifier::command) text += "⌘";
  if (mask & modifier::shift) text += "⇧";
  if (mask & modifier::option) text += "⌥";
  if (mask & modifier::control) text += "⌃";
  text += joined(*currentChars);
  return text.empty() ? "Cliquer pour définir" : text;
}

void ShortcutRecorderManager::writeDefaults() {
  ports_.defaults.set(shortcut_defaults::chars, joinKeyNames(*currentChars));
  ports_.defaults.set(shortcut_defaults::modifiers, *currentModifiers);
}

void ShortcutRecorderManager::onMainQueue(std::function<void()> work) {
  ports_.scheduler.async(lifetime_.guard(std::move(work)));
}

void ShortcutRecorderManager::handleKeyEvent(const KeyEvent& event) {
  if (!*isRecording) return;
  if (event.type == KeyEventType::keyDown) handleKeyDown(event);
  if (event.type == KeyEventType::keyUp) handleKeyUp(event);
}

void ShortcutRecorderManager::handleKeyDown(const KeyEvent& event) {
  const bool alone = noModifierHeld(event) && recordingChars_.empty();
  if (alone && event.namedKey == NamedKey::escape) {
    onMainQueue([this] {
      loadFromDefaults();
      stopRecording();
    });
    return;
  }
  const bool isDelete =
      event.namedKey == NamedKey::backspace || event.namedKey == NamedKey::forwardDelete;
  if (alone && isDelete) {
    onMainQueue([this] { clearShortcut(); });
    return;
  }
  const auto name = charFromEvent(event);
  if (name.empty()) return;
  recordingChars_.insert(name);
  recordingModifiers_ = event.modifiers & allModifiers;
  const auto count =
      recordingChars_.size() +
      static_cast<std::size_t>(std::popcount(static_cast<std::uint64_t>(recordingModifiers_)));
  if (count <= 3) {
    if (recordingChars_.size() > maxCharsReached_.size()) maxCharsReached_ = recordingChars_;
    onMainQueue([this] { errorMessage.set(""); });
  } else {
    // The mask of this refused key stays: it is what a recording ending now saves.
    onMainQueue([this] { errorMessage.set("Maximum 3 touches"); });
    recordingChars_.erase(name);
  }
}

void ShortcutRecorderManager::handleKeyUp(const KeyEvent& event) {
  if (const auto name = charFromEvent(event); !name.empty()) recordingChars_.erase(name);
  if (!recordingChars_.empty() || maxCharsReached_.empty()) return;
  onMainQueue([this] {
    if (maxCharsReached_.empty()) return;  // a second release queued before the first ran
    currentChars.set(maxCharsReached_);
    currentModifiers.set(recordingModifiers_);
    maxCharsReached_.clear();
    stopRecording();
  });
}

}  // namespace orlet
