#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "settings/ShortcutRecorderManager.h"
#include "support/FakeKeyboard.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

using test::FakeKeyboardHook;
constexpr auto cmd = modifier::command;
constexpr auto shift = modifier::shift;
constexpr auto ctrl = modifier::control;

class ShortcutRecorderTest : public ::testing::Test {
 protected:
  void record(const std::function<void(FakeKeyboardHook&)>& keys) {
    recorder.startRecording();
    keys(keyboard);
    scheduler.runUntilIdle();
  }
  std::string saved() const {
    return defaults.string("hotkeyChars").value_or("<none>") + "@" +
           std::to_string(defaults.integer("hotkeyModifiers"));
  }

  test::VirtualScheduler scheduler;
  NotificationCenter notifications;
  MemoryDefaultsStore store;
  UserDefaults defaults{store};
  FakeKeyboardHook keyboard;
  std::ostringstream out;
  HotkeyManager hotkey{{keyboard, defaults, scheduler, notifications, out}};
  ShortcutRecorderManager recorder{{keyboard, defaults, scheduler, hotkey}};
};

struct Recording {
  const char* name;
  std::function<void(FakeKeyboardHook&)> keys;
  const char* saved;  // "hotkeyChars@hotkeyModifiers"
  const char* shown;
  const char* error;
};

TEST_F(ShortcutRecorderTest, ReleasingEveryKeySavesTheLargestCombinationHeld) {
  const std::vector<Recording> cases{
      {"command K", [](auto& k) { k.down("k", cmd), k.up("k", cmd); }, "K@256", "⌘K", ""},
      {"a fourth key is refused",
       [](auto& k) {
         k.down("k", cmd | shift), k.down("7", cmd | shift), k.up("7", cmd | shift),
             k.up("k", cmd | shift);
       },
       "K@768", "⌘⇧K", "Maximum 3 touches"},
      {"three keys released one by one",
       [](auto& k) { k.down("a"), k.down("b"), k.down("c"), k.up("b"), k.up("a"), k.up("c"); },
       "A+B+C@0", "A+B+C", ""},
      {"shift A", [](auto& k) { k.down("a", shift), k.up("a", shift); }, "A@512", "⇧A", ""},
      {"space", [](auto& k) { k.down(" ", 0, NamedKey::space), k.up(" ", 0, NamedKey::space); },
       "Espace@0", "Espace", ""},
      {"escape after a key",
       [](auto& k) {
         k.down("a"), k.down("\x1b", 0, NamedKey::escape), k.up("\x1b", 0, NamedKey::escape),
             k.up("a");
       },
       "A+⎋@0", "A+⎋", ""},
      {"control shift J, symbols in order",
       [](auto& k) { k.down("j", ctrl | shift), k.up("j", ctrl | shift); }, "J@4608", "⇧⌃J", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    record(c.keys);
    EXPECT_FALSE(*recorder.isRecording);
    EXPECT_EQ(saved(), c.saved);
    EXPECT_EQ(recorder.displayText(), c.shown);
    EXPECT_EQ(*recorder.errorMessage, c.error);
  }
}

TEST_F(ShortcutRecorderTest, WhileRecordingTheKeyboardIsKeptAndTheOldShortcutIsOff) {
  record([](auto& k) { k.down("k", ctrl), k.up("k", ctrl); });
  EXPECT_EQ(keyboard.swallowedKeys(), (std::set<std::string>{"K@4096"}));

  recorder.startRecording();
  EXPECT_TRUE(keyboard.swallowedKeys().empty());
  EXPECT_TRUE(keyboard.isKeyboardTaken());
  keyboard.down("j", ctrl | shift);
  keyboard.up("j", ctrl | shift);
  EXPECT_TRUE(keyboard.delivered.empty());
  scheduler.runUntilIdle();

  // The new shortcut works at once, the old one no longer swallows.
  EXPECT_FALSE(keyboard.isKeyboardTaken());
  EXPECT_EQ(keyboard.swallowedKeys(), (std::set<std::string>{"J@4608"}));
  keyboard.down("k", ctrl);
  EXPECT_EQ(keyboard.delivered, (std::vector<std::string>{"k↓"}));
}

TEST_F(ShortcutRecorderTest, EscapeRestoresDeleteClearsAndValidateSavesTheEmptyShortcut) {
  record([](auto& k) { k.down("k", cmd), k.up("k", cmd); });
  record([](auto& k) { k.down("x"), k.up("x"); });
  record([](auto& k) { k.down("\x1b", 0, NamedKey::escape); });
  EXPECT_EQ(recorder.displayText(), "X");
  EXPECT_FALSE(*recorder.isRecording);

  record([](auto& k) { k.down("\x7f", 0, NamedKey::forwardDelete); });
  EXPECT_FALSE(*recorder.isRecording);
  EXPECT_EQ(recorder.displayText(), "Cliquer pour définir");
  EXPECT_EQ(saved(), "X@0");                      // the defaults keep it until "Valider"...
  EXPECT_TRUE(keyboard.swallowedKeys().empty());  // ...but the hotkey stays off

  recorder.saveToDefaults();
  EXPECT_EQ(saved(), "@0");
  EXPECT_TRUE(keyboard.swallowedKeys().empty());
}

// "+" separates the saved names and is also a key's name (the keypad plus, "+" on German and
// Swiss layouts): any name, "+" and "\" among them, survives the round trip, and a text whose
// names cannot be read (the old "++A") grabs nothing rather than Control+A alone.
TEST_F(ShortcutRecorderTest, AnyKeyNameSurvivesTheSavedTextAndAnUnreadableOneGrabsNothing) {
  const struct {
    const char *first, *second, *saved, *shown;
  } cases[] = {{"+", "a", "\\++A@4096", "⌃++A"},
               {"\\", "a", "A+\\\\@4096", "⌃A+\\"},
               {"-", "a", "-+A@4096", "⌃-+A"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.first);
    record([&](auto& k) {
      k.down(c.first, ctrl), k.down(c.second, ctrl), k.up(c.second, ctrl), k.up(c.first, ctrl);
    });
    EXPECT_EQ(saved(), c.saved);
    const std::string first = std::string(c.first) + "@4096";
    EXPECT_EQ(keyboard.swallowedKeys(), (std::set<std::string>{first, "A@4096"}));
    recorder.loadFromDefaults();
    EXPECT_EQ(recorder.displayText(), c.shown);
  }
  defaults.set("hotkeyChars", "++A");
  hotkey.registerHotkey();
  EXPECT_TRUE(keyboard.swallowedKeys().empty());
  EXPECT_NE(out.str().find("touche illisible"), std::string::npos);
}

TEST_F(ShortcutRecorderTest, AStoredShortcutIsReadBackAsItStands) {
  defaults.set("hotkeyChars", "7+k");
  defaults.set("hotkeyModifiers", 768);
  recorder.loadFromDefaults();
  EXPECT_EQ(recorder.displayText(), "⌘⇧7+k");
  defaults.set("hotkeyChars", "");
  defaults.set("hotkeyModifiers", 0);
  recorder.loadFromDefaults();
  EXPECT_EQ(recorder.displayText(), "Cliquer pour définir");
}

// A key another program holds is said beside the recorder, when the recording ends and again when
// the panel opens on that saved shortcut; the standard-output line stays.
TEST_F(ShortcutRecorderTest, AShortcutAnotherProgramHoldsIsSaidBesideTheRecorder) {
  keyboard.heldElsewhere = {"F"};
  record([](auto& k) { k.down("f", ctrl | modifier::option), k.up("f", ctrl | modifier::option); });
  EXPECT_EQ(*recorder.errorMessage, "Raccourci déjà pris par un autre programme");
  EXPECT_NE(out.str().find("Impossible de créer l'event tap"), std::string::npos);
  recorder.loadFromDefaults();
  EXPECT_EQ(*recorder.errorMessage, "Raccourci déjà pris par un autre programme");
  record([](auto& k) { k.down("g", ctrl), k.up("g", ctrl); });
  EXPECT_EQ(*recorder.errorMessage, "");
}

}  // namespace
}  // namespace orlet
