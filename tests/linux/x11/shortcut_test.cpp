#include <algorithm>
#include <cstdlib>

#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

bool isReddish(std::uint32_t rgb) {
  return (rgb >> 16) > 160 && ((rgb >> 8) & 0xff) < 100 && (rgb & 0xff) < 100;
}

class ShortcutTest : public OrletTest {
 protected:
  // Where the panel's controls are, from its top-left corner.
  Spot recorderButton() { return at(235, 45); }
  Spot validate() { return at(265, 94); }
  Spot at(int dx, int dy) {
    const auto r = rectOf(settings_);
    return {r.x + dx, r.y + dy};
  }
  void record(const std::string& keys) {
    click(recorderButton());
    xdotool(keys);
  }
  bool saved(const std::string& chars, const std::string& modifiers) {
    return eventually(
        [&] { return setting("hotkeyChars") == chars && setting("hotkeyModifiers") == modifiers; });
  }
  // The mirror flips with each shortcut, and the editor keeps the keyboard.
  bool toggles(const std::string& shortcut) {
    const bool wasShown = isShown(mirror());
    xdotool("key " + shortcut);
    return eventually([&] { return isShown(mirror()) != wasShown; }) &&
           eventually([&] { return x_->activeWindow() == editorWindow_; });
  }
  // A typed key reaches the editor, press and release.
  bool editorGets(const std::string& keys, const std::string& keysym) {
    const int before = editorLogged("keyup " + keysym);
    xdotool("key " + keys);
    return eventually([&] { return editorLogged("keyup " + keysym) == before + 1; });
  }
  bool showsError() {
    const auto r = rectOf(settings_);
    const auto line = x_->pixels({r.x + 150, r.y + 60, 170, 25});
    return std::count_if(line.begin(), line.end(), isReddish) > 20;
  }

  xcb_window_t settings_ = XCB_NONE;
};

TEST_F(ShortcutTest, TheShortcutTogglesTheMirrorAndKeepsItsKeyFromTheEditor) {
  presetSettings("hotkeyChars=K\nhotkeyModifiers=4096\n");
  startOrlet();
  EXPECT_TRUE(toggles("ctrl+k"));
  EXPECT_TRUE(editorGets("k", "0x6b"));
  EXPECT_TRUE(editorGets("ctrl+shift+k", "0x6b"));
  EXPECT_TRUE(toggles("ctrl+k"));
  // Only the plain K and Ctrl+Shift+K reached it: nothing of the two Ctrl+K.
  EXPECT_EQ(editorLogged("key 0x6b"), 2);
  EXPECT_EQ(editorLogged("keyup 0x6b"), 2);
  EXPECT_EQ(editorLogged("key 0xffe3"), 3);  // the Control key itself is the editor's
}

TEST_F(ShortcutTest, ARecordedShortcutWorksAtOnceAndTheOldOneNoLonger) {
  presetSettings("hotkeyChars=K\nhotkeyModifiers=4096\n");
  startOrlet();
  settings_ = openSettings();
  record("keydown ctrl keydown shift keydown j keyup j keyup shift keyup ctrl");
  EXPECT_TRUE(saved("J", "4608"));
  EXPECT_EQ(editorLogged("key 0x6a"), 0);  // the recorded keys were the panel's
  // Clicking the panel left the editor active.
  EXPECT_TRUE(eventually([&] { return x_->activeWindow() == editorWindow_; }));
  EXPECT_TRUE(toggles("ctrl+shift+j"));
  EXPECT_TRUE(editorGets("ctrl+k", "0x6b"));
  EXPECT_TRUE(isShown(mirror()));
  EXPECT_EQ(editorLogged("key 0x6a"), 0);
}

TEST_F(ShortcutTest, AFourthKeyIsRefusedEscapeRestoresAndDeleteThenValidateSwitchesItOff) {
  presetSettings("hotkeyChars=K\nhotkeyModifiers=4096\n");
  startOrlet();
  settings_ = openSettings();
  record("keydown ctrl keydown shift keydown a keydown b");
  EXPECT_TRUE(eventually([&] { return showsError(); }));
  xdotool("keyup b keyup a keyup shift keyup ctrl");
  EXPECT_TRUE(saved("A", "4608"));

  record("key Escape");
  EXPECT_TRUE(eventually([&] { return !showsError(); }));
  EXPECT_TRUE(toggles("ctrl+shift+a"));  // back on, unchanged

  record("key Delete");
  EXPECT_TRUE(editorGets("ctrl+shift+a", "0x61"));  // off while only shown cleared
  EXPECT_TRUE(saved("A", "4608"));
  click(validate());
  EXPECT_TRUE(saved("", "0"));
  EXPECT_TRUE(eventually([&] { return !isShown(settings_); }));
  EXPECT_TRUE(editorGets("ctrl+shift+a", "0x61"));
}

// On a French layout A sits where Q was: the shortcut follows the letter, not the key. (The
// editor has been typed in before, so it too must follow the change to name the keys right.)
TEST_F(ShortcutTest, AnotherKeyboardLayoutMovesTheShortcutWithItsLetter) {
  presetSettings("hotkeyChars=A\nhotkeyModifiers=4096\n");
  startOrlet();
  ASSERT_TRUE(editorGets("a", "0x61"));
  const auto command = "DISPLAY=" + session_->display() + " setxkbmap -layout fr";
  ASSERT_EQ(std::system(command.c_str()), 0);
  // Until ORLET has read the new layout, the key that was A is still kept: type until it passes.
  EXPECT_TRUE(eventually([&] {
    xdotool("key ctrl+q");
    return editorLogged("keyup 0x71") > 0;
  }));
  EXPECT_TRUE(toggles("ctrl+a"));
  EXPECT_EQ(editorLogged("key 0x61"), 1);
}

TEST_F(ShortcutTest, AKeyAnotherProgramHoldsIsReportedOnceAndTheButtonStillWorks) {
  ASSERT_TRUE(x_->grabKey(0x6b, XCB_MOD_MASK_CONTROL));
  presetSettings("hotkeyChars=K\nhotkeyModifiers=4096\n");
  startOrlet();
  const std::string line =
      "Impossible de créer l'event tap - vérifiez les permissions d'accessibilité";
  EXPECT_TRUE(eventually([&] { return orlet_->output().find(line) != std::string::npos; }));
  showMirror();
  EXPECT_TRUE(isShown(mirror()));
  const auto output = orlet_->output();
  EXPECT_EQ(output.find(line), output.rfind(line));
}

// `orlet --toggle` does what the shortcut does, for a desktop whose own key binding runs it; with
// no ORLET in the session it says so and fails.
TEST_F(ShortcutTest, TheToggleCommandTogglesTheRunningMirror) {
  const auto toggle = [&] {
    auto command = launchOrlet({"--toggle"});
    const auto status = command->waitForExit(10s);
    return std::make_pair(status, command->output());
  };
  EXPECT_EQ(toggle(),
            std::make_pair(std::optional<int>(1),
                           std::string("orlet: ORLET n'est pas lancé dans cette session\n")));
  startOrlet();
  const auto answered = std::make_pair(std::optional<int>(0), std::string());
  EXPECT_EQ(toggle(), answered);
  EXPECT_TRUE(eventually([&] { return isShown(mirror()); }));
  EXPECT_EQ(x_->activeWindow(), editorWindow_);
  EXPECT_EQ(toggle(), answered);
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
}

}  // namespace
}  // namespace orlet::x11test
