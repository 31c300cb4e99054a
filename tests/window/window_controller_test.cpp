#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/FloatingButtonPanel.h"
#include "support/FakePlatform.h"

namespace orlet {
namespace {

using test::FakePanel;
using test::FakePlatform;

class WindowControllerTest : public ::testing::Test {
 protected:
  FakePanel& mirror() {
    controller.ensureWindow();
    return *platform.panels.panel(PanelContent::mirror);
  }
  void record(std::string_view name) {
    subscriptions.push_back(
        platform.notifications.observe(name, [this, name] { posted.emplace_back(name); }));
  }

  FakePlatform platform;
  WindowController controller{platform.windowControllerPorts()};
  std::vector<std::string> posted;
  std::vector<Subscription> subscriptions;
};

TEST_F(WindowControllerTest, FirstShowSitsBesideTheAnchorTopAlignedAndLaterShowsKeepTheUsersPlace) {
  record(notification::windowDidShow);
  record(notification::windowDidHide);
  FakePanel anchor(platform.windowServer, FloatingButtonPanel::config(), FakePlatform::ourPid);
  anchor.setFrameOrigin({100, 200});

  EXPECT_TRUE(controller.toggleWindow(&anchor));
  EXPECT_EQ(mirror().frame(), (Rect{140, 200, 900, 600}));
  mirror().userMove({500, 50});
  EXPECT_FALSE(controller.toggleWindow(&anchor));
  EXPECT_FALSE(mirror().isVisible());
  EXPECT_TRUE(controller.toggleWindow(&anchor));
  EXPECT_EQ(mirror().frame().origin(), (Point{500, 50}));
  EXPECT_EQ(posted, (std::vector<std::string>{"windowDidShow", "windowDidHide", "windowDidShow"}));
}

// Every move and resize is saved at once; the next run restores a complete numeric frame, or
// a numeric position at the default size, and nothing else.
TEST(WindowFrame, IsSavedAsItChangesAndRestoredOnlyFromNumbers) {
  struct Case {
    std::vector<std::pair<std::string, DefaultsValue>> stored;
    Rect expected;
  };
  const std::vector<Case> cases = {
      {{{"secondaryWindowPositionX", 10.0},
        {"secondaryWindowPositionY", std::int64_t{20}},
        {"secondaryWindowWidth", std::string("700")},
        {"secondaryWindowHeight", 400.0}},
       {10, 20, 700, 400}},
      {{{"secondaryWindowPositionX", 10.0}, {"secondaryWindowPositionY", 20.0}},
       {10, 20, 900, 600}},
      {{{"secondaryWindowPositionX", 10.0},
        {"secondaryWindowPositionY", std::string("haut")},
        {"secondaryWindowWidth", 700.0},
        {"secondaryWindowHeight", 400.0}},
       {0, 0, 900, 600}},
  };
  for (const auto& c : cases) {
    FakePlatform platform;
    for (const auto& [key, value] : c.stored) platform.store.setValue(key, value);
    WindowController controller(platform.windowControllerPorts());
    controller.ensureWindow();
    EXPECT_EQ(controller.secondaryWindow()->frame(), c.expected);
  }

  FakePlatform platform;
  WindowController firstRun(platform.windowControllerPorts());
  firstRun.ensureWindow();
  auto& mirror = *platform.panels.panel(PanelContent::mirror);
  mirror.userMove({30, 40});
  mirror.userResize({700, 400});
  WindowController nextRun(platform.windowControllerPorts());
  nextRun.ensureWindow();
  EXPECT_EQ(nextRun.secondaryWindow()->frame(), (Rect{30, 40, 700, 400}));
}

TEST_F(WindowControllerTest, ADragCountsAsMovingUntilTheButtonHasBeenUpForAMoment) {
  platform.windowServer.setPressedButtons(mouse_button::left);
  mirror().userMove({10, 10});
  EXPECT_TRUE(controller.isWindowBeingMoved());
  platform.scheduler.advance(Seconds{1.0});  // held still, button down
  EXPECT_TRUE(controller.isWindowBeingMoved());
  platform.windowServer.setPressedButtons(0);
  platform.scheduler.advance(WindowController::moveEndDelay);
  EXPECT_FALSE(controller.isWindowBeingMoved());

  // A move announced before any position is reported (the window manager reports it at the
  // end) counts too, and ends all the same once the button is up.
  platform.windowServer.setPressedButtons(mouse_button::left);
  mirror().userMove(mirror().frame().origin());
  EXPECT_TRUE(controller.isWindowBeingMoved());
  platform.scheduler.advance(Seconds{1.0});
  EXPECT_TRUE(controller.isWindowBeingMoved());
  platform.windowServer.setPressedButtons(0);
  platform.scheduler.advance(WindowController::moveEndDelay);
  EXPECT_FALSE(controller.isWindowBeingMoved());
}

TEST_F(WindowControllerTest, BackButtonFollowsTheViewsAndReportsPresses) {
  record(notification::backButtonPressed);
  auto* back = mirror().button(PanelCorner::topLeading);
  ASSERT_NE(back, nullptr);
  EXPECT_TRUE(back->hidden);
  platform.notifications.post(notification::showBackButton);
  EXPECT_FALSE(back->hidden);
  back->click();
  EXPECT_EQ(posted, std::vector<std::string>{"backButtonPressed"});
  platform.notifications.post(notification::hideBackButton);
  EXPECT_TRUE(back->hidden);
}

// The press reaches the mirror first; the editor gets the front back one turn later.
TEST_F(WindowControllerTest, PressesOnTheMirrorHandActivationBackAfterReachingIt) {
  const auto editor = platform.launch("Capture One 23", 200);
  platform.workspace.bringToFront(platform.ourApp());
  EXPECT_EQ(mirror().send(MouseEventType::leftUp), EventDisposition::pass);
  platform.scheduler.runUntilIdle();
  EXPECT_EQ(platform.workspace.frontmostApplication(), platform.ourApp());

  EXPECT_EQ(mirror().send(MouseEventType::rightDown), EventDisposition::pass);
  EXPECT_EQ(platform.workspace.frontmostApplication(), platform.ourApp());
  platform.scheduler.runUntilIdle();
  EXPECT_EQ(platform.workspace.frontmostApplication(), editor);
}

}  // namespace
}  // namespace orlet
