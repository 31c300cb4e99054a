#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

// Without an X server ORLET says why and exits with status 1, whatever kind of session it is.
TEST(OrletWithoutDisplay, ExitsWithAMessage) {
  struct Case {
    std::map<std::string, std::string> environment;
    std::string message;
  };
  const std::string log = (std::filesystem::temp_directory_path() / "orlet-nodisplay.log").string();
  for (const auto& c : {
           Case{{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}}, "no X display (DISPLAY is not set)"},
           Case{{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-0"}},
                "no X display (Wayland session without XWayland"},
           Case{{{"DISPLAY", ":5999"}}, "no X display (cannot connect to \":5999\")"},
       }) {
    std::filesystem::remove(log);
    Process orlet({ORLET_BINARY}, c.environment, log);
    EXPECT_EQ(orlet.waitForExit(10s), 1);
    EXPECT_NE(orlet.output().find("orlet: " + c.message), std::string::npos) << orlet.output();
  }
  std::filesystem::remove(log);
}

// The button floats on every desktop without a taskbar entry and is shown only while the editor
// is in front; the status icon sits in the tray.
TEST_F(OrletTest, ButtonFollowsTheEditorAndStaysOutOfTheTaskbar) {
  startOrlet();
  const auto b = button();
  auto& ewmh = x_->ewmh();
  EXPECT_TRUE(x_->hasState(b, ewmh._NET_WM_STATE_SKIP_TASKBAR));
  EXPECT_TRUE(x_->hasState(b, ewmh._NET_WM_STATE_SKIP_PAGER));
  EXPECT_TRUE(x_->hasState(b, ewmh._NET_WM_STATE_ABOVE));
  EXPECT_EQ(x_->desktop(b), 0xFFFFFFFFu);
  EXPECT_EQ(rectOf(b), (WindowRect{0, 0, 40, 40}));
  const auto tray = x_->trayPanel();
  ASSERT_TRUE(tray);
  EXPECT_TRUE(eventually([&] { return !x_->descendantsOf(*tray, orlet_->pid()).empty(); }));

  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return !x_->isViewable(b); }));
  activate(editorWindow_);
  EXPECT_TRUE(eventually([&] { return x_->isViewable(b); }));

  click(centreOf(rectOf(b)));
  ASSERT_TRUE(eventually([&] { return isShown(mirror()); }));
  EXPECT_TRUE(x_->hasState(*mirror(), ewmh._NET_WM_STATE_SKIP_TASKBAR));
  EXPECT_TRUE(x_->hasState(*mirror(), ewmh._NET_WM_STATE_SKIP_PAGER));
  EXPECT_EQ(x_->desktop(*mirror()), 0xFFFFFFFFu);
  EXPECT_EQ(x_->activeWindow(), editorWindow_);
}

}  // namespace
}  // namespace orlet::x11test
