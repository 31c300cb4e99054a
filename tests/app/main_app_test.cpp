#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "settings/HotkeyManager.h"
#include "settings/SettingsWindowController.h"
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
  EventDisposition press(MouseEventType type, Point at) { return button().send(type, at); }
  void frontBecomes(const RunningApplication& app) {
    platform.workspace.bringToFront(app);
    platform.scheduler.runUntilIdle();
  }

  FakePlatform platform;
  RunningApplication editor = platform.launch("Capture One 23", 200);
  RunningApplication other = platform.launch("Firefox", 300);
  std::unique_ptr<MainApp> app;
};

// The button is shown last, so it is there at launch even when another application is in front.
TEST_F(MainAppTest, StartUpShowsTheButtonTheMenuAndAHiddenMirrorWhateverIsInFront) {
  bool hotkeyRegistered = false;
  SharedInstance<HotkeyManager>::setFactory(
      [&] { return std::make_unique<RecordingHotkeyManager>(hotkeyRegistered); });
  bool settingsShown = false;
  SharedInstance<SettingsWindowController>::setFactory(
      [&] { return std::make_unique<RecordingSettings>(settingsShown); });
  platform.workspace.bringToFront(other);
  start();

  EXPECT_TRUE(button().isVisible());
  EXPECT_EQ(button().level(), PanelLevel::floating);
  EXPECT_EQ(button().frame(), (Rect{0, 0, 40, 40}));
  ASSERT_NE(mirror(), nullptr);
  EXPECT_FALSE(mirror()->isVisible());
  EXPECT_TRUE(hotkeyRegistered);
  EXPECT_EQ(platform.statusBar.icon->size, (Size{18, 18}));
  std::vector<std::string> titles;
  for (const auto& item : platform.statusBar.menu->items) {
    titles.push_back(item.isSeparator ? "-" : item.title);
  }
  EXPECT_EQ(titles, (std::vector<std::string>{"Paramètres…", "-", "Mise à jour…", "-", "Quitter"}));

  // The settings are made only once chosen.
  EXPECT_FALSE(SharedInstance<SettingsWindowController>::exists());
  platform.statusBar.menu->items[0].action();
  EXPECT_TRUE(settingsShown);
  platform.statusBar.menu->items[4].action();
  EXPECT_TRUE(platform.application.terminated);
}

TEST_F(MainAppTest, TheButtonReturnsWhereItWasLeftOnlyWhenBothCoordinatesAreNumbers) {
  platform.store.setValue("buttonWindowX", 300.0);
  platform.store.setValue("buttonWindowY", std::string("bas"));
  start();
  EXPECT_EQ(button().frame().origin(), (Point{0, 0}));

  button().userMove({300, 500});
  start();  // the next run
  EXPECT_EQ(button().frame().origin(), (Point{300, 500}));
}

// The client's display may stand left of or above the main one: the button first appears in the
// main display's free corner, stays where the operator left it on any display, and comes back to
// that corner from a display since unplugged; so does a mirror, beside it.
TEST_F(MainAppTest, OurWindowsFirstAppearOnTheMainDisplayAndComeBackFromAnUnpluggedOne) {
  platform.windowServer.screenAreas = {
      {{0, 1080, 1920, 1080}, {0, 1108, 1920, 1052}, true},  // below, a panel along its top
      {{0, 0, 2560, 1440}, {0, 0, 2560, 1440}, false},
  };
  const std::pair<std::optional<Point>, Point> cases[] = {
      {std::nullopt, {0, 1108}},
      {Point{100, 100}, {100, 100}},  // on the client's display, where the operator put it
      {Point{5000, 100}, {0, 1108}},  // on a display unplugged since
  };
  for (const auto& [saved, expected] : cases) {
    platform.store.removeValue("buttonWindowX");
    if (saved) {
      platform.store.setValue("buttonWindowX", saved->x);
      platform.store.setValue("buttonWindowY", saved->y);
    }
    start();
    EXPECT_EQ(button().frame().origin(), expected);
  }
  platform.store.setValue("secondaryWindowPositionX", 5000.0);
  platform.store.setValue("secondaryWindowPositionY", 100.0);
  SharedInstance<WindowController>::reset();
  platform.installSharedWindowController();
  frontBecomes(editor);
  button().send(MouseEventType::leftDown, {20, 20});
  button().send(MouseEventType::leftUp, {20, 20});
  ASSERT_TRUE(mirror()->isVisible());
  EXPECT_EQ(mirror()->frame().origin(), (Point{40, 1108}));
}

// The editor is whichever of the known ones is installed or running, or the one chosen, which
// takes effect at once; with none known the button stays whatever is in front, or nothing would
// open the mirror once the first other application came forward.
TEST(EditorFollowing, TheButtonFollowsTheEditorTheOperatorUses) {
  FakePlatform platform;
  platform.installSharedWindowController();
  const auto gimp = platform.launch("GIMP", 200);
  const auto firefox = platform.launch("Firefox", 300);
  MainApp app(platform.mainAppPorts());
  app.start();
  auto& button = *platform.panels.panel(PanelContent::floatingButton);
  auto frontIs = [&](const RunningApplication& front) {
    platform.workspace.bringToFront(front);
    platform.scheduler.runUntilIdle();
    return button.isVisible();
  };
  EXPECT_TRUE(frontIs(firefox));  // no editor known
  EXPECT_TRUE(frontIs(platform.ourApp()));
  platform.editorChoice.choose("GIMP");  // this program kept the front, for want of an editor
  EXPECT_EQ(platform.workspace.frontmostApplication(), gimp);
  platform.editorChoice.choose("");

  platform.workspace.installed.push_back(
      {"Darktable", "org.darktable.darktable", "darktable", {"Graphics", "Photography"}});
  EXPECT_FALSE(frontIs(gimp));
  const auto darktable = platform.launch("Darktable", 400);
  EXPECT_TRUE(frontIs(darktable));

  platform.editorChoice.choose("GIMP");
  EXPECT_FALSE(button.isVisible());  // at once, with darktable still in front
  EXPECT_EQ(platform.defaults.string("editorName"), "GIMP");
  EXPECT_TRUE(frontIs(gimp));
  EXPECT_FALSE(frontIs(firefox));
  platform.editorChoice.choose("");
  EXPECT_TRUE(frontIs(darktable));
}

// The front application is read one turn after the change, once the activation has settled.
// This program counts as in front when the identifiers match, two absent ones included, and
// never keeps the front: the editor gets it back and the button stays.
TEST_F(MainAppTest, TheButtonFollowsTheFrontApplicationOneHopAfterTheChange) {
  start();
  platform.workspace.bringToFront(other);
  EXPECT_TRUE(button().isVisible());
  platform.scheduler.runUntilIdle();
  EXPECT_FALSE(button().isVisible());
  frontBecomes(editor);
  EXPECT_TRUE(button().isVisible());
  frontBecomes(platform.ourApp());
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);
  EXPECT_TRUE(button().isVisible());

  platform.workspace.clearFront();
  platform.scheduler.runUntilIdle();
  EXPECT_FALSE(button().isVisible());
  platform.workspace.setOurIdentifier(std::nullopt);
  platform.workspace.clearFront();
  platform.scheduler.runUntilIdle();
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);
  EXPECT_TRUE(button().isVisible());
}

// Past 3 points of travel a press is a drag that moves the button; up to 3 it is a click that
// toggles the mirror beside it. A right click opens the status menu at the pointer, nothing else.
TEST_F(MainAppTest, GesturesOnTheButtonTellDragsClicksAndMenuApart) {
  platform.workspace.bringToFront(other);
  start();
  press(MouseEventType::leftDown, {10, 10});
  press(MouseEventType::leftDragged, {12, 12.3});  // just over 3.0
  button().userMove({100, 200});
  press(MouseEventType::leftUp, {102, 202.3});
  EXPECT_FALSE(mirror()->isVisible());
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);

  EXPECT_EQ(press(MouseEventType::rightDown, {115, 225}), EventDisposition::swallow);
  EXPECT_EQ(platform.statusBar.poppedUpAt, (Point{115, 225}));
  EXPECT_EQ(platform.statusBar.poppedUpMenu, platform.statusBar.menu);
  EXPECT_FALSE(mirror()->isVisible());

  press(MouseEventType::leftDown, {110, 210});
  press(MouseEventType::leftDragged, {113, 210});  // exactly 3.0: still a click
  press(MouseEventType::leftUp, {113, 210});
  EXPECT_TRUE(mirror()->isVisible());
  EXPECT_EQ(mirror()->frame(), (Rect{140, 200, 900, 600}));
}

// A flick: by the time each event is handled the pointer is already at the end of the drag, and
// no motion may come between press and release. The events' own locations tell it is a drag.
TEST_F(MainAppTest, AFlickOfTheButtonMovesItWithoutToggling) {
  platform.workspace.bringToFront(editor);
  start();
  for (const bool withMotion : {true, false}) {
    platform.windowServer.movePointer({410, 310});
    press(MouseEventType::leftDown, {10, 10});
    if (withMotion) press(MouseEventType::leftDragged, {300, 200});
    press(MouseEventType::leftUp, {410, 310});
    EXPECT_FALSE(mirror()->isVisible()) << withMotion;
  }
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
