#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/AppMenuActions.h"
#include "app/FloatingButtonPanel.h"
#include "app/HotkeyManager.h"
#include "app/SettingsWindowController.h"
#include "support/FakePlatform.h"

namespace orlet {
namespace {

using test::FakePanel;
using test::FakePlatform;

struct RecordingHotkeyManager final : HotkeyManager {
  explicit RecordingHotkeyManager(bool& registered) : registered(registered) {}
  void registerHotkey() override { registered = true; }
  bool& registered;
};

struct RecordingSettings final : SettingsWindowController {
  explicit RecordingSettings(bool& shown) : shown(shown) {}
  void showSettings() override { shown = true; }
  bool& shown;
};

class MainAppTest : public ::testing::Test {
 protected:
  MainAppTest() { platform.installSharedWindowController(); }

  void start() {
    app = std::make_unique<MainApp>(platform.mainAppPorts());
    app->start();
  }
  FakePanel& button() const { return *platform.panels.panel(PanelContent::floatingButton); }
  FakePanel* mirror() const { return platform.panels.panel(PanelContent::mirror); }
  void click(MouseEventType type, Point at) {
    platform.windowServer.movePointer(at);
    button().send(type, at);
  }

  FakePlatform platform;
  RunningApplication editor = platform.launch("Capture One 23", 200);
  RunningApplication other = platform.launch("Firefox", 300);
  std::unique_ptr<MainApp> app;
};

TEST_F(MainAppTest, StartUpShowsTheButtonTheMenuAndAHiddenMirrorWhateverIsInFront) {
  bool hotkeyRegistered = false;
  SharedInstance<HotkeyManager>::setFactory(
      [&] { return std::make_unique<RecordingHotkeyManager>(hotkeyRegistered); });
  platform.workspace.bringToFront(other);
  start();

  EXPECT_TRUE(button().isVisible());
  EXPECT_EQ(button().level(), PanelLevel::floating);
  EXPECT_EQ(button().frame(), (Rect{0, 0, 40, 40}));
  ASSERT_NE(mirror(), nullptr);
  EXPECT_FALSE(mirror()->isVisible());
  EXPECT_TRUE(hotkeyRegistered);

  ASSERT_TRUE(platform.statusBar.menu());
  std::vector<std::string> titles;
  for (const auto& item : platform.statusBar.menu()->items) {
    titles.push_back(item.isSeparator ? "-" : item.title);
    EXPECT_EQ(item.keyEquivalent, "");
  }
  EXPECT_EQ(titles, (std::vector<std::string>{"Paramètres…", "-", "Mise à jour…", "-", "Quitter"}));
  EXPECT_EQ(platform.statusBar.icon()->size, (Size{18, 18}));
}

TEST_F(MainAppTest, MenuEntriesReachControllersCreatedOnlyWhenChosen) {
  bool settingsShown = false;
  SharedInstance<SettingsWindowController>::setFactory(
      [&] { return std::make_unique<RecordingSettings>(settingsShown); });
  start();
  EXPECT_FALSE(SharedInstance<SettingsWindowController>::exists());

  const auto& items = platform.statusBar.menu()->items;
  items[0].action();
  EXPECT_TRUE(settingsShown);
  items[4].action();
  EXPECT_TRUE(platform.application.isTerminated());
}

TEST_F(MainAppTest, TheButtonReturnsWhereItWasLeftOnlyWhenBothCoordinatesAreNumbers) {
  platform.store.setValue("buttonWindowX", 300.0);
  platform.store.setValue("buttonWindowY", std::string("bas"));
  start();
  EXPECT_EQ(button().frame().origin(), (Point{0, 0}));

  button().userMove({300, 500});
  EXPECT_EQ(platform.defaults.number("buttonWindowY"), 500);
  start();  // the next run
  EXPECT_EQ(button().frame().origin(), (Point{300, 500}));
}

TEST_F(MainAppTest, TheButtonFollowsTheFrontApplicationOneHopAfterTheChange) {
  start();
  platform.workspace.bringToFront(other);
  EXPECT_TRUE(button().isVisible());
  platform.scheduler.runUntilIdle();
  EXPECT_FALSE(button().isVisible());

  platform.workspace.bringToFront(editor);
  platform.scheduler.runUntilIdle();
  EXPECT_TRUE(button().isVisible());

  // This program never keeps the front: the editor gets it back and the button stays.
  platform.workspace.bringToFront(platform.ourApp());
  platform.scheduler.runUntilIdle();
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);
  EXPECT_TRUE(button().isVisible());
}

TEST_F(MainAppTest, WithNothingInFrontTwoAbsentIdentifiersCountAsThisProgram) {
  start();
  platform.workspace.clearFront();
  platform.scheduler.runUntilIdle();
  EXPECT_FALSE(button().isVisible());

  platform.workspace.setOurIdentifier(std::nullopt);
  platform.workspace.clearFront();
  platform.scheduler.runUntilIdle();
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);
  EXPECT_TRUE(button().isVisible());
}

TEST_F(MainAppTest, ADragMovesTheButtonWithoutTogglingAndAClickTogglesBesideIt) {
  platform.workspace.bringToFront(other);
  start();
  click(MouseEventType::leftDown, {10, 10});
  click(MouseEventType::leftDragged, {12, 12.3});  // just over 3.0
  button().userMove({100, 200});
  click(MouseEventType::leftUp, {102, 202.3});
  EXPECT_FALSE(mirror()->isVisible());
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);

  click(MouseEventType::leftDown, {110, 210});
  click(MouseEventType::leftDragged, {113, 210});  // exactly 3.0: still a click
  click(MouseEventType::leftUp, {113, 210});
  EXPECT_TRUE(mirror()->isVisible());
  EXPECT_EQ(mirror()->frame(), (Rect{140, 200, 900, 600}));
}

TEST_F(MainAppTest, ARightClickOpensTheStatusMenuAtThePointerAndNothingElse) {
  start();
  platform.windowServer.movePointer({15, 25});
  EXPECT_EQ(button().send(MouseEventType::rightDown, {15, 25}), EventDisposition::swallow);
  EXPECT_EQ(platform.statusBar.poppedUpAt(), (Point{15, 25}));
  EXPECT_EQ(platform.statusBar.poppedUpMenu(), platform.statusBar.menu());
  EXPECT_FALSE(mirror()->isVisible());
}

TEST_F(MainAppTest, TheShortcutTogglesTheMirrorAndHandsTheFrontBackEachTime) {
  platform.workspace.bringToFront(editor);
  start();
  platform.notifications.post(notification::hotkeyPressed);
  EXPECT_TRUE(mirror()->isVisible());

  platform.workspace.bringToFront(platform.ourApp());
  platform.notifications.post(notification::hotkeyPressed);
  EXPECT_FALSE(mirror()->isVisible());
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);
}

}  // namespace
}  // namespace orlet
