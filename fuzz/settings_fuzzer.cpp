// The stored settings as ORLET reads them at start: the input is a settings file's lines,
// "key=value", where a value may be tagged with its stored type ("i:" integer, "d:" floating
// point, "b:" Boolean; text otherwise), since a store may hand back any of them. ORLET then
// starts on the fake platform, shows and hides the mirror, and the shortcut is registered,
// shown and typed.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "app/SharedInstance.h"
#include "settings/HotkeyManager.h"
#include "settings/ShortcutRecorderManager.h"
#include "support/FakeKeyboard.h"
#include "support/FakePlatform.h"

namespace {

using namespace orlet;

DefaultsValue typed(const std::string& text) {
  if (text.size() >= 2 && text[1] == ':') {
    const std::string rest = text.substr(2);
    switch (text[0]) {
      case 'i':
        return static_cast<std::int64_t>(std::strtoll(rest.c_str(), nullptr, 10));
      case 'd':
        return std::strtod(rest.c_str(), nullptr);
      case 'b':
        return rest == "1";
    }
  }
  return text;
}

void store(DefaultsStore& defaults, const std::string& input) {
  std::istringstream lines(input);
  for (std::string line; std::getline(lines, line);) {
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;
    defaults.setValue(line.substr(0, equals), typed(line.substr(equals + 1)));
  }
}

void typeShortcut(test::FakeKeyboardHook& keyboard, const UserDefaults& defaults) {
  const auto modifiers = defaults.integer("hotkeyModifiers");
  keyboard.modifiersChange(modifiers);
  const auto chars = defaults.string("hotkeyChars").value_or("");
  keyboard.down(chars.substr(0, chars.find('+')), modifiers);
  keyboard.up(chars.substr(0, chars.find('+')), modifiers);
  keyboard.modifiersChange(0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::FakePlatform platform;
  store(platform.store, std::string(reinterpret_cast<const char*>(data), size));
  test::FakeKeyboardHook keyboard;
  std::ostringstream out;
  platform.installSharedWindowController();
  SharedInstance<HotkeyManager>::setFactory([&] {
    return std::make_unique<HotkeyManager>(HotkeyManager::Ports{
        keyboard, platform.defaults, platform.scheduler, platform.notifications, out});
  });
  SharedInstance<ShortcutRecorderManager>::setFactory([&] {
    return std::make_unique<ShortcutRecorderManager>(ShortcutRecorderManager::Ports{
        keyboard, platform.defaults, platform.scheduler, HotkeyManager::shared()});
  });
  {
    MainApp app(platform.mainAppPorts());
    app.start();
    platform.scheduler.runUntilIdle();
    auto& windows = WindowController::shared();
    for (int toggle = 0; toggle < 2; ++toggle) {
      windows.toggleWindow(nullptr);
      platform.scheduler.advance(Seconds{0.3});  // past the placement and the move checks
    }
    auto& recorder = ShortcutRecorderManager::shared();
    recorder.loadFromDefaults();
    (void)recorder.displayText();
    typeShortcut(keyboard, platform.defaults);
    platform.scheduler.runUntilIdle();
    SharedInstance<ShortcutRecorderManager>::reset();
  }
  return 0;
}
