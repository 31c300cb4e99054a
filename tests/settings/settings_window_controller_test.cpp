#include <gtest/gtest.h>

#include <sstream>

#include "settings/SettingsWindowController.h"
#include "support/FakeKeyboard.h"
#include "support/FakePlatform.h"
#include "support/FakeSettingsPanel.h"

namespace orlet {
namespace {

class SettingsWindowControllerTest : public ::testing::Test {
 protected:
  test::FakePlatform platform;
  test::FakeKeyboardHook keyboard;
  test::FakeSettingsPanelFactory panels;
  std::ostringstream out;
  HotkeyManager hotkey{
      {keyboard, platform.defaults, platform.scheduler, platform.notifications, out}};
  ShortcutRecorderManager recorder{{keyboard, platform.defaults, platform.scheduler, hotkey}};
  SettingsWindowController controller{{panels, platform.scheduler, platform.editor, recorder}};
};

TEST_F(SettingsWindowControllerTest, OnePanelWhileVisibleANewOneOnTheSavedShortcutOnceClosed) {
  platform.defaults.set("hotkeyChars", "K");
  controller.showSettings();
  recorder.currentChars.set({"J"});
  controller.showSettings();  // only brought forward: what it shows is not reloaded
  EXPECT_EQ(panels.created, 1);
  EXPECT_EQ(panels.last->raised, 2);
  EXPECT_EQ(recorder.displayText(), "J");

  panels.last->close();  // closing saves what is shown
  EXPECT_EQ(platform.defaults.string("hotkeyChars"), "J");
  platform.defaults.set("hotkeyChars", "L");
  controller.showSettings();
  EXPECT_EQ(panels.created, 2);
  EXPECT_TRUE(panels.last->isVisible());
  EXPECT_EQ(recorder.displayText(), "L");
}

TEST_F(SettingsWindowControllerTest, ClosingStopsTheRecordingAndClicksHandTheFocusBack) {
  const auto editor = platform.launch("Capture One 23", 200);
  platform.workspace.bringToFront(platform.ourApp());
  controller.showSettings();
  recorder.startRecording();
  panels.last->releaseClick();
  platform.scheduler.runUntilIdle();
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);

  panels.last->onClose();  // what "Valider" calls
  EXPECT_FALSE(panels.last->isVisible());
  EXPECT_FALSE(*recorder.isRecording);
  EXPECT_FALSE(keyboard.isKeyboardTaken());
}

}  // namespace
}  // namespace orlet
