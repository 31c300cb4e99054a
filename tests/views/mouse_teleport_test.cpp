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
  MouseTeleportManager manager{{scheduler, server, input, editor, info, [this] { return visible; },
                                [this] { return moved; }}};
};

// Into the display at the matching spot; during the cooldown nothing happens, not even the
// flag; then back beside the mirror from the edge reached.
TEST_F(MouseTeleportTest, PointerCrossesIntoTheDisplayAndBackBesideTheMirror) {
  pointerAt({300, 212.5});
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
    pointerAt({300, 212.5});
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
  pointerAt({300, 212.5});
  EXPECT_EQ(warps(), (std::vector<Point>{{3200, 720}}));
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
  pointerAt({300, 212.5});
  EXPECT_EQ(warps(), (std::vector<Point>{{960, -540}}));

  info.displays.erase(kTarget);
  manager.startMonitoring(kTarget);
  waitOutTheCooldown();
  input.events.clear();
  pointerAt({300, 212.5});
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
