#include <gtest/gtest.h>

#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"
#include "views/FakeScreenCapturePermission.h"
#include "views/WindowSelectorModel.h"

namespace orlet {
namespace {

using test::makeDisplay;
using Foreground = SelectorForeground;
using Ids = std::vector<DisplayID>;

class WindowSelectorModelTest : public ::testing::Test {
 protected:
  WindowSelectorModelTest() { capture.displays = {second, mainDisplay}; }

  Ids listed() const {
    Ids ids;
    for (const auto& d : model.dm().displays.get()) ids.push_back(d.displayID);
    return ids;
  }
  bool anyStreamRunning() const {
    return std::any_of(capture.streams.begin(), capture.streams.end(),
                       [](const auto& s) { return s->isRunning(); });
  }
  // Long enough for a refresh of a few displays (0.1 s of test capture each).
  void settle() { scheduler.advance(Seconds{1}); }
  // The panel is shown with the permission already given, and the grid has loaded.
  void showWithPermission() {
    permission.granted = true;
    center.post(notification::windowDidShow);
    settle();
  }

  test::VirtualScheduler scheduler;
  NotificationCenter center;
  test::FakeCaptureService capture{scheduler};
  test::FakeScreenCapturePermission permission{scheduler};
  bool panelVisible = true;
  bool backButtonVisible = false;  // as the panel shows it
  Subscription showBack =
      center.observe(notification::showBackButton, [this] { backButtonVisible = true; });
  Subscription hideBack =
      center.observe(notification::hideBackButton, [this] { backButtonVisible = false; });

  const Display mainDisplay = makeDisplay(1, 1920, 1080, 0, true);
  const Display second = makeDisplay(2, 2560, 1440, 1920);
  const Display third = makeDisplay(3, 1280, 1024, 4480);

  WindowSelectorModel model{
      {scheduler, center, capture, permission, [this] { return panelVisible; }}};
};

// The view's own appearance only checks; showing the panel asks, one prompt at a time, and
// again after a refusal. A grant loads the displays, main first.
TEST_F(WindowSelectorModelTest, PermissionCardUntilGrantedAndOneRequestAtATime) {
  backButtonVisible = true;
  model.appear();
  settle();
  EXPECT_EQ(model.foreground(), Foreground::permissionCard);
  EXPECT_EQ(model.permissionStatusText(), "Non autorisée");
  EXPECT_EQ(permission.openPrompts(), 0u);
  EXPECT_FALSE(backButtonVisible);
  EXPECT_TRUE(capture.streams.empty());

  center.post(notification::windowDidShow);
  center.post(notification::windowDidShow);
  settle();
  EXPECT_EQ(permission.openPrompts(), 1u);
  EXPECT_TRUE(model.isRequestingPermission());
  permission.answer(false);
  settle();
  EXPECT_FALSE(model.isRequestingPermission());
  EXPECT_EQ(model.foreground(), Foreground::permissionCard);

  center.post(notification::windowDidShow);
  settle();
  EXPECT_EQ(permission.openPrompts(), 1u);
  permission.answer(true);
  scheduler.runUntilIdle();
  EXPECT_EQ(model.permissionStatusText(), "Autorisée");
  EXPECT_EQ(model.foreground(), Foreground::loading);
  settle();
  EXPECT_EQ(model.foreground(), Foreground::grid);
  EXPECT_EQ(listed(), (Ids{1, 2}));
}

// A screen whose pixels no capture can read lists no display: the panel says why rather than
// showing an empty grid, and says it still after the next refresh.
TEST_F(WindowSelectorModelTest, AnUnreadableScreenIsSaidInsteadOfAnEmptyGrid) {
  capture.unreadableDepth = 16;
  showWithPermission();
  EXPECT_EQ(model.foreground(), Foreground::unreadableScreen);
  EXPECT_EQ(model.dm().unreadableDepth.get(), 16);
  EXPECT_TRUE(capture.streams.empty());
  scheduler.advance(Seconds{6});
  EXPECT_EQ(model.foreground(), Foreground::unreadableScreen);
}

// The refresh loop ticks 5 s after the last refresh ended, skips its turns while a display is
// enlarged, and starts again with either way back.
TEST_F(WindowSelectorModelTest, TheListRefreshesEveryFiveSecondsOnlyWhileNothingIsSelected) {
  showWithPermission();  // the refresh ends 0.2 s in
  capture.displays.push_back(third);
  scheduler.advance(Seconds{4});
  EXPECT_EQ(listed(), (Ids{1, 2}));
  scheduler.advance(Seconds{1});
  EXPECT_EQ(listed(), (Ids{1, 2, 3}));
  // A refresh over a list already shown keeps the grid.
  capture.displays.pop_back();
  scheduler.advance(Seconds{4.25});
  EXPECT_TRUE(model.dm().isLoading.get());
  EXPECT_EQ(model.foreground(), Foreground::grid);
  settle();
  EXPECT_EQ(listed(), (Ids{1, 2}));

  model.select(model.dm().displays.get()[1]);
  EXPECT_EQ(model.foreground(), Foreground::enlarged);
  EXPECT_EQ(model.enlargedDisplayIndex(), 2);
  EXPECT_TRUE(backButtonVisible);
  capture.displays.push_back(third);
  scheduler.advance(Seconds{12});
  EXPECT_EQ(listed(), (Ids{1, 2}));

  center.post(notification::backButtonPressed);
  EXPECT_EQ(model.foreground(), Foreground::grid);
  EXPECT_FALSE(backButtonVisible);
  scheduler.advance(Seconds{4.5});
  EXPECT_EQ(listed(), (Ids{1, 2}));
  scheduler.advance(Seconds{1});
  EXPECT_EQ(listed(), (Ids{1, 2, 3}));

  // The enlarged view's own back action restarts the loop too, without touching the button.
  model.select(second);
  capture.displays.pop_back();
  model.back();
  EXPECT_EQ(model.foreground(), Foreground::grid);
  EXPECT_TRUE(backButtonVisible);
  scheduler.advance(Seconds{4.75});  // the earlier loop would have ticked by now
  EXPECT_EQ(listed(), (Ids{1, 2, 3}));
  scheduler.advance(Seconds{1});
  EXPECT_EQ(listed(), (Ids{1, 2}));
}

TEST_F(WindowSelectorModelTest, SelectedDisplayThatLeavesTheListIsShownAsTheFirst) {
  showWithPermission();
  model.select(second);
  capture.displays = {mainDisplay};
  center.post(notification::windowDidShow);  // the check refreshes even while enlarged
  settle();
  EXPECT_EQ(listed(), (Ids{1}));
  EXPECT_EQ(model.foreground(), Foreground::enlarged);
  EXPECT_EQ(model.enlargedDisplayIndex(), 1);
}

TEST_F(WindowSelectorModelTest, HidingThePanelStopsTheLoopAndEveryTestStream) {
  // Hidden before its first refresh: nothing is ever captured.
  permission.granted = true;
  center.post(notification::windowDidShow);
  center.post(notification::windowDidHide);
  scheduler.advance(Seconds{20});
  EXPECT_TRUE(capture.streams.empty());
  EXPECT_TRUE(listed().empty());

  // Hidden while the first refresh runs: that refresh ends, but no loop follows it.
  center.post(notification::windowDidShow);
  scheduler.advance(Seconds{0.05});
  center.post(notification::windowDidHide);
  capture.displays.push_back(third);
  scheduler.advance(Seconds{20});
  EXPECT_FALSE(anyStreamRunning());
  EXPECT_TRUE(std::none_of(capture.streams.begin(), capture.streams.end(),
                           [](const auto& s) { return s->display().displayID == 3; }));

  // Hidden while a later refresh tests a display: that capture stops at once, and no other
  // starts.
  capture.displays.pop_back();
  showWithPermission();
  scheduler.advance(Seconds{4.25});
  ASSERT_TRUE(anyStreamRunning());
  center.post(notification::windowDidHide);
  EXPECT_FALSE(anyStreamRunning());
  capture.displays.push_back(third);
  for (int i = 0; i < 30; ++i) {
    scheduler.advance(Seconds{1});
    ASSERT_FALSE(anyStreamRunning()) << "at " << scheduler.now().count() << " s";
  }
  EXPECT_NE(listed(), (Ids{1, 2, 3}));
}

TEST_F(WindowSelectorModelTest, LosingThePermissionClearsListSelectionAndBackButton) {
  showWithPermission();
  model.select(second);
  permission.granted = false;
  panelVisible = false;
  model.applicationDidBecomeActive();  // panel hidden: nothing is checked
  EXPECT_EQ(model.foreground(), Foreground::enlarged);

  panelVisible = true;
  model.applicationDidBecomeActive();
  EXPECT_EQ(model.foreground(), Foreground::permissionCard);
  EXPECT_TRUE(listed().empty());
  EXPECT_FALSE(model.selected->has_value());
  EXPECT_FALSE(backButtonVisible);
  EXPECT_EQ(permission.openPrompts(), 0u);  // becoming active never prompts
  capture.displays.push_back(third);
  scheduler.advance(Seconds{20});
  EXPECT_TRUE(listed().empty());
  EXPECT_FALSE(anyStreamRunning());
}

TEST_F(WindowSelectorModelTest, ViewHearsOfChangesOncePerTurnWithTheNewState) {
  std::vector<Foreground> seen;
  auto subscription = model.observeChanges([&] { seen.push_back(model.foreground()); });
  showWithPermission();
  seen.clear();
  model.select(second);
  model.select(mainDisplay);
  EXPECT_TRUE(seen.empty());  // not inside the change
  scheduler.runUntilIdle();
  EXPECT_EQ(seen, std::vector<Foreground>{Foreground::enlarged});
}

}  // namespace
}  // namespace orlet
