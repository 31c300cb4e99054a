#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "settings/HotkeyManager.h"
#include "support/FakeKeyboard.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

using test::FakeKeyboardHook;
constexpr auto cmd = modifier::command;
constexpr auto shift = modifier::shift;
constexpr auto failureLine =
    "Impossible de créer l'event tap - vérifiez les permissions d'accessibilité\n";

class HotkeyManagerTest : public ::testing::Test {
 protected:
  HotkeyManagerTest() {
    fired = notifications.observe(notification::hotkeyPressed, [this] { ++fires; });
  }
  void save(const std::string& chars, std::int64_t mask) {
    defaults.set("hotkeyChars", chars);
    defaults.set("hotkeyModifiers", mask);
    manager.registerHotkey();
  }
  int firesAfterIdle() {
    scheduler.runUntilIdle();
    return fires;
  }

  test::VirtualScheduler scheduler;
  NotificationCenter notifications;
  MemoryDefaultsStore store;
  UserDefaults defaults{store};
  FakeKeyboardHook keyboard;
  std::ostringstream out;
  HotkeyManager manager{{keyboard, defaults, scheduler, notifications, out}};
  Subscription fired;
  int fires = 0;
};

TEST_F(HotkeyManagerTest, RegistrationSwallowsTheSavedKeysUnderTheSavedMaskOnly) {
  defaults.set("hotkeyModifiers", 512);
  manager.registerHotkey();
  EXPECT_FALSE(manager.isRegistered());  // no keys saved: nothing hooked, the mask still read
  EXPECT_EQ(manager.savedModifiers(), 512);

  save("b+a", cmd);
  save("k", 4096);  // replaces the earlier registration
  EXPECT_EQ(keyboard.swallowedKeys(), (std::set<std::string>{"K@4096"}));
  keyboard.down("k", cmd);
  keyboard.down("k", 4096);
  EXPECT_EQ(firesAfterIdle(), 1);
  EXPECT_EQ(keyboard.delivered, (std::vector<std::string>{"k↓"}));

  manager.unregisterHotkey();
  keyboard.down("k", 4096);
  EXPECT_EQ(firesAfterIdle(), 1);  // an unregistered shortcut no longer fires
  EXPECT_TRUE(keyboard.swallowedKeys().empty());
  EXPECT_EQ(out.str(), "");
}

TEST_F(HotkeyManagerTest, AKeyHeldByAnotherProgramPrintsTheFailureAndLeavesNoShortcut) {
  keyboard.heldElsewhere = {"K"};
  save("K", 4096);
  EXPECT_EQ(out.str(), failureLine);
  EXPECT_FALSE(manager.isRegistered());
  keyboard.down("k", 4096);
  EXPECT_EQ(firesAfterIdle(), 0);
  EXPECT_EQ(keyboard.delivered, (std::vector<std::string>{"k↓"}));
}

struct Typing {
  const char* name;
  const char* chars;
  std::int64_t mask;
  std::function<void(FakeKeyboardHook&)> type;
  int fires;
  std::vector<std::string> delivered;
};

TEST_F(HotkeyManagerTest, FiresAtTheKeyDownThatCompletesTheSetUnderTheExactMask) {
  const std::vector<Typing> cases{
      {"in order",
       "A+B",
       cmd,
       [](auto& k) { k.down("a", cmd), k.down("b", cmd), k.up("a", cmd), k.up("b", cmd); },
       1,
       {}},
      {"reverse order", "A+B", cmd, [](auto& k) { k.down("b", cmd), k.down("a", cmd); }, 1, {}},
      {"extra modifier",
       "A+B",
       cmd,
       [](auto& k) { k.down("a", cmd | shift), k.down("b", cmd | shift); },
       0,
       {"a↓", "b↓"}},
      {"a partial shortcut is swallowed", "A+B", cmd, [](auto& k) { k.down("a", cmd); }, 0, {}},
      {"single key, no modifier",
       "Q",
       0,
       [](auto& k) { k.down("q"), k.up("q"), k.down("q"); },
       2,
       {}},
      {"repeats",
       "A+B",
       cmd,
       [](auto& k) { k.down("a", cmd), k.down("b", cmd), k.down("b", cmd, NamedKey::none, true); },
       1,
       {}},
      {"again after a release",
       "A+B",
       cmd,
       [](auto& k) { k.down("a", cmd), k.down("b", cmd), k.up("b", cmd), k.down("b", cmd); },
       2,
       {}},
      {"a modifier change abandons",
       "A+B",
       cmd,
       [](auto& k) { k.down("a", cmd), k.modifiersChange(cmd | shift), k.down("b", cmd); },
       0,
       {}},
      {"a wrong mask abandons",
       "A+B",
       cmd,
       [](auto& k) { k.down("a", cmd), k.down("x", shift), k.down("b", cmd); },
       0,
       {"x↓"}},
      {"named keys never fire",
       "Espace",
       0,
       [](auto& k) { k.down(" ", 0, NamedKey::space); },
       0,
       {" ↓"}},
      {"a plus key never fires", "+", 0, [](auto& k) { k.down("+"); }, 0, {"+↓"}},
      {"other keys pass",
       "K",
       4096,
       [](auto& k) { k.down("j", 4096), k.down("k"); },
       0,
       {"j↓", "k↓"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fires = 0;
    keyboard.delivered.clear();
    save(c.chars, c.mask);
    c.type(keyboard);
    EXPECT_EQ(firesAfterIdle(), c.fires);
    EXPECT_EQ(keyboard.delivered, c.delivered);
  }
}

}  // namespace
}  // namespace orlet
