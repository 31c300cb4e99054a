#include <gtest/gtest.h>

#include "foundation/DefaultsStore.h"
#include "settings/EditorChoice.h"
#include "support/FakeInput.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "views/FakeDisplayInfoProvider.h"
#include "views/MouseTeleportManager.h"
#include "views/ScreenPositionTracker.h"

namespace orlet {
namespace {

constexpr std::uint32_t kTarget = 5;
const RunningApplication kEditor{"Capture One 23", "com.captureone.CaptureOne", 200};
const RunningApplication kOther{"Gimp", "org.gimp.GIMP", 300};
const RunningApplication kOurs{"ORLET", "orlet", 100};

class MouseTeleportTest : public ::testing::Test {
 protected:
  MouseTeleportTest() {
    info.displays[kTarget].bounds = {1920, 0, 2560, 1440};
    workspace.setOurIdentifier("orlet");
    workspace.bringToFront(kEditor);
    manager.startMonitoring(kTarget);
    manager.updateMirrorRect(kMirror);
  }

  // Puts the pointer at `p` and lets one check (and its publication) run.
  void pointerAt(Point p) {
    server.movePointer(p);
    scheduler.advance(MouseTeleportManager::checkInterval);
  }
  // Moves the pointer in from beside the picture, as a hand does: a jump needs the way in.
  void enterPicture(Point p) {
    pointerAt({kMirror.x - 30, p.y});
    pointerAt(p);
  }
  void waitOutTheCooldown() { scheduler.advance(MouseTeleportManager::teleportCooldown); }
  std::vector<Point> warps() const {
    std::vector<Point> points;
    for (const auto& e : input.events) points.push_back(e.at);
    return points;
  }

  const Rect kMirror{100, 100, 400, 225};
  test::VirtualScheduler scheduler;
  MemoryDefaultsStore store;
  test::FakeWindowServer server;
  test::FakeWorkspace workspace{server};
  UserDefaults defaults{store};
  EditorChoice choice{defaults};
  CaptureOneFocus editor{workspace, choice};
  test::FakeDisplayInfoProvider info;
  test::FakeSyntheticInput input{server, scheduler};
  bool visible = true, moved = false;
  std::optional<WindowNumber> mirrorWindow;
  MouseTeleportManager manager{{scheduler, server, input, editor, info, [this] { return visible; },
                                [this] { return moved; }, [this] { return mirrorWindow; }}};
};

// Into the display at the matching spot; during the cooldown nothing happens, not even the
// flag; then back beside the mirror from the edge reached.
TEST_F(MouseTeleportTest, PointerCrossesIntoTheDisplayAndBackBesideTheMirror) {
  enterPicture({300, 212.5});
  EXPECT_EQ(warps(), (std::vector<Point>{{3200, 720}}));
  EXPECT_TRUE(manager.isMouseOnTargetDisplay.get());

  pointerAt({1000, 900});  // off the display, 1/60 s after the jump
  scheduler.advance(Seconds{0.1});
  EXPECT_EQ(warps().size(), 1u);
  EXPECT_TRUE(manager.isMouseOnTargetDisplay.get());
  waitOutTheCooldown();
  EXPECT_FALSE(manager.isMouseOnTargetDisplay.get());

  struct Case {
    Point from;
    Point landing;
  };
  const Case cases[] = {
      {{1921, 720}, {80, 212.5}},                          // left
      {{4479, 1439}, {520, 100 + (1439.0 / 1440) * 225}},  // corner: right before bottom
      {{1923, 1}, {80, 100 + (1.0 / 1440) * 225}},         // corner: left before top
      {{3200, 3}, {300, 80}},                              // top
      {{3200, 1437}, {300, 345}},                          // bottom
      {{4477, 720}, {520, 212.5}},                         // right, margin included
  };
  for (const auto& c : cases) {
    input.events.clear();
    pointerAt(c.from);
    EXPECT_EQ(warps(), (std::vector<Point>{c.landing})) << c.from.x << "," << c.from.y;
    EXPECT_FALSE(manager.isMouseOnTargetDisplay.get());
    waitOutTheCooldown();
  }
  input.events.clear();
  pointerAt({1924, 720});  // inside the margin band's far side: stays
  EXPECT_TRUE(warps().empty());
  EXPECT_TRUE(manager.isMouseOnTargetDisplay.get());
}

// A reading that is late (the user has already moved on, to the mirror's buttons, say) moves
// nothing: the jump is made only from where the reading was, either way.
TEST_F(MouseTeleportTest, ALateReadingMovesNothing) {
  const Point readings[] = {{300, 212.5}, {1921, 720}};
  for (const Point reading : readings) {
    server.movePointer({300, 90});  // on the mirror's band, above the picture
    server.lateReading = reading;
    scheduler.advance(MouseTeleportManager::checkInterval);
    EXPECT_TRUE(warps().empty()) << reading.x;
    EXPECT_EQ(server.pointer(), (Point{300, 90}));
  }
}

// Only the editor or this program in front lets the pointer in; leaving works whoever is in front.
TEST_F(MouseTeleportTest, FrontApplicationGuardsTheWayInOnly) {
  struct Case {
    std::optional<RunningApplication> front;
    bool jumpsIn;
  };
  const Case cases[] = {{kEditor, true},
                        {RunningApplication{"CAPTURE ONE Pro", std::nullopt, 9}, true},
                        {kOurs, true},
                        {kOther, false},
                        {std::nullopt, false}};
  for (const auto& c : cases) {
    if (c.front) {
      workspace.bringToFront(*c.front);
    } else {
      workspace.clearFront();
    }
    input.events.clear();
    enterPicture({300, 212.5});
    EXPECT_EQ(!warps().empty(), c.jumpsIn)
        << c.front.value_or(RunningApplication{}).localizedName.value_or("none");
    EXPECT_EQ(manager.isMouseOnTargetDisplay.get(), c.jumpsIn);
    waitOutTheCooldown();
    input.events.clear();
    pointerAt({1921, 720});
    EXPECT_EQ(warps(), (std::vector<Point>{{80, 212.5}}));
    waitOutTheCooldown();
  }
}

// While the mirror is hidden or dragged nothing jumps and the flag is forced off.
TEST_F(MouseTeleportTest, HiddenOrDraggedMirrorSuspendsTheCrossing) {
  for (bool* flag : {&moved, &visible}) {
    pointerAt({3200, 720});
    ASSERT_TRUE(manager.isMouseOnTargetDisplay.get());
    *flag = !*flag;
    pointerAt({1921, 720});
    pointerAt({300, 212.5});
    EXPECT_TRUE(input.events.empty());
    EXPECT_FALSE(manager.isMouseOnTargetDisplay.get());
    *flag = !*flag;
  }
  enterPicture({300, 212.5});
  EXPECT_EQ(warps(), (std::vector<Point>{{3200, 720}}));
}

// A picture that appears under a resting pointer, a pointer that moves about inside it or in the
// band along its rim, is not a way in; another window over the picture at the pointer closes the
// way there only.
TEST_F(MouseTeleportTest, ThePointerEntersByMovingIntoAVisiblePartOfThePicture) {
  pointerAt({300, 212.5});  // the first sample already finds it there: a card just chosen
  pointerAt({310, 220});
  pointerAt({550, 212.5});                         // beside the picture, at rest
  manager.updateMirrorRect({450, 100, 400, 225});  // the picture grows under it
  scheduler.advance(MouseTeleportManager::checkInterval);
  manager.updateMirrorRect(kMirror);
  EXPECT_TRUE(warps().empty());

  pointerAt({495, 212.5});  // in the band along the picture's rim: the panel's edge, say
  pointerAt({493, 220});
  EXPECT_TRUE(warps().empty());
  pointerAt({480, 220});  // on, into the picture proper
  EXPECT_EQ(warps().size(), 1u);
  waitOutTheCooldown();
  pointerAt({1921, 720});
  waitOutTheCooldown();

  mirrorWindow = server.openWindow(kOurs.processIdentifier, {90, 90, 420, 245});
  server.openWindow(kEditor.processIdentifier,
                    {0, 0, 200, 200});  // over the picture's top-left corner
  struct Case {
    Point into;
    bool jumps;
  };
  const Case cases[] = {
      {{150, 150}, false}, {{199, 199}, false}, {{200, 150}, true}, {{150, 200}, true}};
  for (const auto& c : cases) {
    input.events.clear();
    enterPicture(c.into);
    EXPECT_EQ(warps().size(), c.jumps ? 1u : 0u) << c.into.x << "," << c.into.y;
    waitOutTheCooldown();
    if (c.jumps) pointerAt({1921, 720});  // back the way a hand comes back
    waitOutTheCooldown();
  }
  input.events.clear();
  enterPicture({150, 150});
  pointerAt({250, 150});  // on from the covered part to the part seen, inside the picture
  EXPECT_EQ(warps(), (std::vector<Point>{{1920 + 150 * 6.4, 50 * 6.4}}));
}

// A pointer that leaves the display between two samples, over its edge band, comes back beside
// the picture as from the border where it crossed; one found off the display after a pause was
// not seen crossing, and stays.
TEST_F(MouseTeleportTest, CrossingTheEdgeBetweenTwoSamplesBringsThePointerBack) {
  struct Case {
    Point on, off;
    Point landing;
  };
  const Case cases[] = {
      {{1925, 720}, {1916, 720}, {80, 212.5}},                           // left, at 9 px a sample
      {{3200, 5}, {3200, -4}, {300, 80}},                                // top
      {{1924, 10}, {1908, -6}, {80, 100 + (6.0 / 1440) * 225}},          // left before top
      {{4470, 1000}, {4490, 1000}, {520, 100 + (1000.0 / 1440) * 225}},  // right
  };
  for (const auto& c : cases) {
    input.events.clear();
    pointerAt(c.on);
    pointerAt(c.off);
    ASSERT_EQ(input.events.size(), 1u) << c.off.x;
    EXPECT_EQ(input.events[0].at, c.landing) << c.off.x;
    EXPECT_EQ(input.events[0].onlyFrom, std::nullopt);
    EXPECT_FALSE(manager.isMouseOnTargetDisplay.get());
    waitOutTheCooldown();
  }
  input.events.clear();
  pointerAt({1925, 720});
  visible = false;
  pointerAt({1925, 720});
  visible = true;
  pointerAt({1916, 720});
  scheduler.advance(Seconds{0.5});
  EXPECT_TRUE(input.events.empty());
}

// Stopping drops the flag at once and the checks with it; the display's bounds are read when
// monitoring starts; an unplugged display makes no jump.
TEST_F(MouseTeleportTest, MonitoringLifecycle) {
  pointerAt({3200, 720});
  manager.stopMonitoring();
  EXPECT_FALSE(manager.isMouseOnTargetDisplay.get());
  EXPECT_EQ(manager.targetDisplayID(), std::nullopt);
  pointerAt({300, 212.5});
  EXPECT_TRUE(input.events.empty());
  manager.stopMonitoring();

  info.displays[kTarget].bounds = {0, -1080, 1920, 1080};  // rearranged while stopped
  server.movePointer({3000, 500});
  manager.startMonitoring(kTarget);
  manager.startMonitoring(kTarget);  // one timer, not two
  const int queries = server.pointerQueries;
  scheduler.advance(Seconds{0.5 + 0.5 / 60});
  EXPECT_EQ(server.pointerQueries - queries, 30);
  enterPicture({300, 212.5});
  EXPECT_EQ(warps(), (std::vector<Point>{{960, -540}}));

  info.displays.erase(kTarget);
  manager.startMonitoring(kTarget);
  waitOutTheCooldown();
  input.events.clear();
  enterPicture({300, 212.5});
  scheduler.advance(Seconds{1});
  EXPECT_TRUE(input.events.empty());
}

// The picture's rectangle on screen follows the view every 0.03 s, the display's aspect fitted
// inside the view's rectangle, while the mirror is shown.
TEST_F(MouseTeleportTest, PictureRectangleFollowsTheView) {
  info.displays[9].bounds = {1920, 0, 3440, 1440};
  std::optional<Rect> view = Rect{50, 60, 600, 400};
  ScreenPositionTracker probe{scheduler, server, manager, info, [&] { return view; }};
  manager.updateMirrorRect({});
  probe.startTracking(9);
  scheduler.advance(Seconds{0.029});
  EXPECT_EQ(manager.mirrorScreenRect(), Rect{});
  scheduler.advance(Seconds{0.001});
  const Rect fitted = manager.mirrorScreenRect();
  EXPECT_DOUBLE_EQ(fitted.height, 600 * 1440 / 3440.0);
  EXPECT_EQ(fitted.width, 600);
  EXPECT_DOUBLE_EQ(fitted.y, 60 + (400 - fitted.height) / 2);
  EXPECT_EQ(fitted.x, 50);

  view = Rect{700, 0, 300, 400};  // the panel moved and narrowed
  scheduler.advance(ScreenPositionTracker::updateInterval);
  EXPECT_EQ(manager.mirrorScreenRect().x, 700);
  view.reset();  // out of its window: the last rectangle stays
  scheduler.advance(ScreenPositionTracker::updateInterval);
  EXPECT_EQ(manager.mirrorScreenRect().x, 700);

  probe.stopTracking();
  view = Rect{0, 0, 600, 400};
  scheduler.advance(Seconds{1});
  EXPECT_EQ(manager.mirrorScreenRect().x, 700);

  info.displays.erase(9);  // unplugged: no picture, so no jump
  probe.startTracking(9);
  scheduler.advance(ScreenPositionTracker::updateInterval);
  EXPECT_EQ(manager.mirrorScreenRect(), Rect{});
}

}  // namespace
}  // namespace orlet
