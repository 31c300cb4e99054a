#include <thread>

#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

// Without an X server ORLET says why and exits with status 1, whatever kind of session it is.
TEST(OrletWithoutDisplay, ExitsWithAMessage) {
  const std::string log = (std::filesystem::temp_directory_path() / "orlet-nodisplay.log").string();
  const std::pair<std::map<std::string, std::string>, std::string> cases[] = {
      {{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}}, "aucun écran X (DISPLAY n'est pas défini)"},
      {{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-0"}},
       "aucun écran X (session Wayland sans XWayland"},
      {{{"DISPLAY", ":5999"}}, "aucun écran X (connexion impossible à « :5999 »)"},
  };
  for (const auto& [environment, message] : cases) {
    std::filesystem::remove(log);
    Process orlet({ORLET_BINARY}, environment, log);
    EXPECT_EQ(orlet.waitForExit(10s), 1);
    EXPECT_NE(orlet.output().find("orlet: " + message), std::string::npos) << orlet.output();
  }
  std::filesystem::remove(log);
}

// The command line answers in French, with no display needed, and its help names the editor.
TEST(OrletWithoutDisplay, TheCommandLineAnswersInFrench) {
  const std::string log = (std::filesystem::temp_directory_path() / "orlet-cli.log").string();
  const std::tuple<std::string, int, std::string> cases[] = {
      {"--help", 0, "à côté de votre éditeur photo.\n\nOptions :\n  -h, --help     Affiche"},
      {"--bogus", 1, "orlet: option inconnue : --bogus\nVoir « orlet --help »."},
  };
  for (const auto& [argument, status, said] : cases) {
    std::filesystem::remove(log);
    Process orlet({ORLET_BINARY, argument},
                  {{"DISPLAY", ""},
                   {"XDG_DATA_HOME", "/nonexistent"},
                   {"XDG_DATA_DIRS", "/nonexistent"},
                   {"XDG_CONFIG_HOME", "/nonexistent"}},
                  log);
    EXPECT_EQ(orlet.waitForExit(10s), status);
    EXPECT_NE(orlet.output().find(said), std::string::npos) << orlet.output();
  }
  std::filesystem::remove(log);
}

// The button floats on every desktop without a taskbar entry and is shown only while the editor
// is in front; the status icon sits in the tray; the mirror has no taskbar entry either.
TEST_F(OrletTest, ButtonFollowsTheEditorAndStaysOutOfTheTaskbar) {
  startOrlet();
  auto& ewmh = x_->ewmh();
  const auto b = button();
  EXPECT_EQ(rectOf(b), (WindowRect{0, 0, 40, 40}));
  EXPECT_TRUE(x_->hasState(b, ewmh._NET_WM_STATE_ABOVE));
  const auto tray = x_->trayPanel();
  ASSERT_TRUE(tray);
  EXPECT_TRUE(eventually([&] { return !x_->descendantsOf(*tray, orlet_->pid()).empty(); }));

  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return !isShown(b); }));
  activate(editorWindow_);
  EXPECT_TRUE(eventually([&] { return isShown(b); }));

  showMirror();
  for (const auto w : {b, mirror()}) {
    EXPECT_TRUE(x_->hasState(w, ewmh._NET_WM_STATE_SKIP_TASKBAR));
    EXPECT_TRUE(x_->hasState(w, ewmh._NET_WM_STATE_SKIP_PAGER));
    EXPECT_EQ(x_->desktop(w), 0xFFFFFFFFu);
  }
  EXPECT_EQ(x_->activeWindow(), editorWindow_);
}

// ORLET's own windows open on the display of the floating button, the operator's, not on the
// primary display nor by the pointer: here the button has been put on the second display.
TEST_F(OrletTest, SettingsOpenOnTheButtonsDisplay) {
  presetSettings("buttonWindowX=3000\nbuttonWindowY=700\n");
  startOrlet();
  const auto displayOf = [](Spot s) { return s.x < kSecondDisplay.x ? 0 : 1; };
  const Spot b = centreOf(rectOf(button()));
  const xcb_window_t settings = openSettings();
  ASSERT_NE(settings, XCB_NONE);
  const auto r = rectOf(settings);
  EXPECT_TRUE(x_->withinOneDisplay(r)) << r.x << "," << r.y;
  EXPECT_EQ(displayOf(centreOf(r)), displayOf(b)) << r.x << "," << r.y << " button " << b.x;
}

class WithoutTrayTest : public OrletTest {
 protected:
  void SetUp() override {
    sessionHasTray_ = false;
    OrletTest::SetUp();
  }
};

// Started before any notification area, ORLET is still reached through the button's menu; the
// status icon docks as soon as a tray host comes up.
TEST_F(WithoutTrayTest, TheStatusIconComesWithALateTray) {
  startOrlet();
  EXPECT_FALSE(x_->trayPanel());
  EXPECT_NE(openSettings(), XCB_NONE);

  ASSERT_TRUE(session_->startTray());
  EXPECT_TRUE(eventually(
      [&] {
        const auto tray = x_->trayPanel();
        return tray && !x_->descendantsOf(*tray, orlet_->pid()).empty();
      },
      10s));
}

// "Quitter" ends ORLET with status 0 whatever its captures are doing: while the display list is
// being checked, while the cards capture, while the chosen display captures. Each moment is tried
// a few times, since a capture thread that outlives what it reports to fails only now and then.
TEST_F(OrletTest, QuittingWhileDisplaysAreCapturedEndsCleanly) {
  for (int round = 0; round < 9; ++round) {
    startOrlet();
    const auto m = showMirror();
    // Not a wait for something: the moment of the quit, after the checks have begun.
    if (round % 3 > 0) std::this_thread::sleep_for(500ms);
    if (round % 3 == 2) click({m.x + 30, m.y + 30});  // the main display's card
    EXPECT_EQ(quitThroughMenu(), 0) << "round " << round << "\n" << orlet_->output();
  }
}

}  // namespace
}  // namespace orlet::x11test
