#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "support/FakePlatform.h"
#include "window/TextCase.h"

namespace orlet {
namespace {

using test::FakePanel;
using test::FakePlatform;

// The editor with one large window, another application, and the mirror's controller.
struct Desk {
  Desk() { controller->ensureWindow(); }

  FakePanel& mirror() const { return *platform.panels.panel(PanelContent::mirror); }
  std::vector<WindowNumber> stacking() const { return platform.windowServer.stacking(); }
  bool isDirectlyAboveEditor() const {
    const auto order = stacking();
    const auto at = std::find(order.begin(), order.end(), mirror().windowNumber());
    return at != order.end() && at + 1 != order.end() && *(at + 1) == editorWindow;
  }
  void show() { ASSERT_TRUE(controller->toggleWindow(nullptr)); }
  void frontChanges(const RunningApplication& app) {
    platform.workspace.bringToFront(app);
    controller->handleFrontAppChange(lowercased(*app.localizedName), app == platform.ourApp());
  }

  FakePlatform platform;
  RunningApplication editor = platform.launch("Capture One 23", 200);
  WindowNumber editorWindow = platform.windowServer.stacking().front();
  RunningApplication other = platform.launch("Finder", 300);
  std::unique_ptr<WindowController> controller =
      std::make_unique<WindowController>(platform.windowControllerPorts());
};

// A mirror the user closed stays closed; an unpinned one leaves with any change of the front
// application but not for this program's own panels; a pinned one stays beside any.
TEST(MirrorVisibility, FollowsTheFrontApplication) {
  enum Front { editor, other, ours };
  struct Case {
    bool open, pinned;
    Front front;
    bool stays;
  };
  const Case cases[] = {
      {false, true, editor, false}, {false, true, other, false},  {false, true, ours, false},
      {true, false, ours, true},    {true, false, editor, false}, {true, false, other, false},
      {true, true, editor, true},   {true, true, other, true},
  };
  for (const auto& c : cases) {
    Desk d;
    d.controller->setPinned(c.pinned);
    d.show();
    if (!c.open) d.controller->toggleWindow(nullptr);
    d.frontChanges(c.front == editor ? d.editor : c.front == other ? d.other : d.platform.ourApp());
    d.platform.scheduler.advance(Seconds{1});
    EXPECT_EQ(d.mirror().isVisible(), c.stays)
        << "open " << c.open << ", pinned " << c.pinned << ", front " << c.front;
  }
}

// Whether the user sees the mirror decides whether a toggle hides it or brings it forward.
TEST(MirrorVisibility, SeenOnlyWhenShownNotMinimisedNotUnderTheEditorAndNotCovered) {
  struct Case {
    const char* name;
    bool hidden, minimised, editorOver, covered, seen;
  };
  const Case cases[] = {
      {"shown", false, false, false, false, true},
      {"hidden", true, false, false, false, false},
      {"minimised", false, true, false, false, false},
      {"editor in front over part of it", false, false, true, false, false},
      {"another window over all of it", false, false, false, true, false},
  };
  for (const auto& c : cases) {
    FakePlatform platform;
    const auto editor = platform.launch("Capture One 23", 200, {500, 0, 1600, 1000});
    WindowController controller(platform.windowControllerPorts());
    ASSERT_TRUE(controller.toggleWindow(nullptr));
    auto& mirror = *platform.panels.panel(PanelContent::mirror);
    if (c.hidden) mirror.orderOut();
    mirror.setMiniaturized(c.minimised);
    if (c.editorOver) platform.workspace.bringToFront(editor);
    if (c.covered) platform.launch("Finder", 300, {0, 0, 1000, 1000});
    EXPECT_EQ(controller.isWindowEffectivelyVisible(mirror), c.seen) << c.name;
    // A toggle hides what the user sees and brings forward what they do not.
    EXPECT_EQ(controller.toggleWindow(nullptr), !c.seen) << c.name;
    EXPECT_EQ(platform.windowServer.stacking().front() == mirror.windowNumber(), !c.seen) << c.name;
  }
}

// The editor raises its own windows when it comes forward: the pinned mirror is placed above
// its top window only once that is done, and behind another application only after it too has
// raised its windows.
TEST(MirrorVisibility, PinnedMirrorIsPlacedAboveTheEditorAfterTheFrontHasSettled) {
  Desk d;
  d.controller->setPinned(true);
  d.show();
  d.frontChanges(d.editor);
  EXPECT_EQ(d.mirror().level(), PanelLevel::floating);
  d.platform.scheduler.advance(WindowController::placementDelay);
  EXPECT_TRUE(d.isDirectlyAboveEditor());

  d.frontChanges(d.other);
  d.platform.scheduler.advance(Seconds{0.049});
  EXPECT_EQ(d.mirror().level(), PanelLevel::floating);
  EXPECT_EQ(d.stacking().front(), d.mirror().windowNumber());
  d.platform.scheduler.advance(Seconds{0.001});
  EXPECT_EQ(d.mirror().level(), PanelLevel::normal);
  EXPECT_TRUE(d.isDirectlyAboveEditor());
  EXPECT_NE(d.stacking().front(), d.mirror().windowNumber());
}

// The placement due after a front change must not bring back a mirror that was unpinned (and so
// ordered out) or closed in the meantime.
TEST(MirrorVisibility, APlacementStillPendingAfterUnpinningOrClosingLeavesTheMirrorOut) {
  for (const bool closeInstead : {false, true}) {
    Desk d;
    d.controller->setPinned(true);
    d.show();
    d.frontChanges(d.editor);
    d.platform.scheduler.advance(Seconds{0.02});
    if (closeInstead) {
      EXPECT_FALSE(d.controller->toggleWindow(nullptr));
    } else {
      d.controller->setPinned(false);
    }
    ASSERT_FALSE(d.mirror().isVisible());
    d.platform.scheduler.advance(Seconds{1});
    EXPECT_FALSE(d.mirror().isVisible()) << (closeInstead ? "closed" : "unpinned");
    EXPECT_TRUE(d.controller->toggleWindow(nullptr)) << "the next toggle shows it again";
  }
}

TEST(MirrorVisibility, APlacementStillPendingWhenTheControllerGoesAwayDoesNothing) {
  Desk d;
  d.controller->setPinned(true);
  d.show();
  d.frontChanges(d.other);
  auto expected = d.stacking();
  std::erase(expected, d.mirror().windowNumber());
  d.platform.scheduler.advance(Seconds{0.03});
  d.controller.reset();
  d.platform.scheduler.advance(Seconds{1});
  EXPECT_EQ(d.stacking(), expected);
}

TEST(MirrorVisibility, PinningWhileTheEditorIsFrontKeepsTheMirrorAndUnpinningHidesIt) {
  Desk d;
  d.frontChanges(d.editor);
  d.show();
  auto* pin = d.mirror().button(PanelCorner::topTrailing);
  ASSERT_NE(pin, nullptr);
  EXPECT_EQ(pin->symbol, "pin.slash");

  pin->click();
  EXPECT_TRUE(WindowController(d.platform.windowControllerPorts()).isPinned());  // saved
  EXPECT_EQ(d.mirror().level(), PanelLevel::floating);
  EXPECT_TRUE(d.isDirectlyAboveEditor());
  EXPECT_EQ(pin->symbol, "pin.fill");
  EXPECT_EQ(pin->tint, ButtonTint::controlAccent);

  pin->click();
  EXPECT_FALSE(d.platform.defaults.boolean("secondaryWindowPinned"));
  EXPECT_FALSE(d.mirror().isVisible());
  EXPECT_EQ(pin->symbol, "pin.slash");
  EXPECT_EQ(pin->tint, ButtonTint::secondaryLabel);
}

}  // namespace
}  // namespace orlet
