#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "support/FakePlatform.h"
#include "window/TextCase.h"

namespace orlet {
namespace {

using test::FakePanel;
using test::FakePlatform;

// The editor with one large window, another application in front of it, and the mirror.
class VisibilityTest : public ::testing::Test {
 protected:
  VisibilityTest() {
    editorWindow = platform.windowServer.stacking().front();
    other = platform.launch("Finder", 300);
    controller->ensureWindow();
  }

  FakePanel& mirror() const { return *platform.panels.panel(PanelContent::mirror); }
  std::vector<WindowNumber> stacking() const { return platform.windowServer.stacking(); }
  bool isDirectlyAbove(WindowNumber below) const {
    const auto order = stacking();
    const auto at = std::find(order.begin(), order.end(), mirror().windowNumber());
    return at != order.end() && at + 1 != order.end() && *(at + 1) == below;
  }
  void show() { ASSERT_TRUE(controller->toggleWindow(nullptr)); }
  void frontChanges(const RunningApplication& app) {
    platform.workspace.bringToFront(app);
    controller->handleFrontAppChange(lowercased(*app.localizedName), app == platform.ourApp());
  }

  FakePlatform platform;
  RunningApplication editor = platform.launch("Capture One 23", 200);
  WindowNumber editorWindow = 0;
  RunningApplication other;
  std::unique_ptr<WindowController> controller =
      std::make_unique<WindowController>(platform.windowControllerPorts());
};

TEST_F(VisibilityTest, AMirrorTheUserClosedStaysClosedWhateverComesToTheFront) {
  controller->setPinned(true);
  show();
  controller->toggleWindow(nullptr);
  for (const auto& app : {editor, other, platform.ourApp()}) {
    frontChanges(app);
    platform.scheduler.advance(Seconds{1});
    EXPECT_FALSE(mirror().isVisible()) << *app.localizedName;
  }
}

TEST_F(VisibilityTest, AnUnpinnedMirrorLeavesWithTheFrontButNotForThisProgram) {
  show();
  frontChanges(platform.ourApp());
  EXPECT_TRUE(mirror().isVisible());
  frontChanges(editor);
  EXPECT_FALSE(mirror().isVisible());

  show();
  frontChanges(other);
  EXPECT_FALSE(mirror().isVisible());
  EXPECT_TRUE(controller->userWantsWindowVisible());
}

TEST_F(VisibilityTest, APinnedMirrorFloatsOverTheEditorAndSinksAboveItWhenAnotherAppIsFront) {
  controller->setPinned(true);
  show();
  frontChanges(editor);
  EXPECT_EQ(mirror().level(), PanelLevel::floating);
  platform.scheduler.advance(WindowController::placementDelay);
  EXPECT_TRUE(isDirectlyAbove(editorWindow));

  frontChanges(other);
  platform.scheduler.advance(Seconds{0.049});
  EXPECT_EQ(mirror().level(), PanelLevel::floating);
  EXPECT_EQ(stacking().front(), mirror().windowNumber());
  platform.scheduler.advance(Seconds{0.001});
  EXPECT_EQ(mirror().level(), PanelLevel::normal);
  EXPECT_TRUE(isDirectlyAbove(editorWindow));
  EXPECT_NE(stacking().front(), mirror().windowNumber());
  EXPECT_FALSE(controller->lastFrontAppWasCaptureOne());
  EXPECT_TRUE(controller->wasVisibleBeforeLeavingCaptureOne());
}

TEST_F(VisibilityTest, APlacementStillPendingWhenTheControllerGoesAwayDoesNothing) {
  controller->setPinned(true);
  show();
  frontChanges(other);
  auto expected = stacking();
  std::erase(expected, mirror().windowNumber());
  platform.scheduler.advance(Seconds{0.03});
  controller.reset();
  platform.scheduler.advance(Seconds{1});
  EXPECT_EQ(stacking(), expected);
}

TEST_F(VisibilityTest, PinningWhileTheEditorIsFrontKeepsTheMirrorAndUnpinningHidesIt) {
  frontChanges(editor);
  show();
  auto* pin = mirror().button(PanelCorner::topTrailing);
  ASSERT_NE(pin, nullptr);
  EXPECT_EQ(pin->symbol(), "pin.slash");

  pin->click();
  EXPECT_TRUE(WindowController(platform.windowControllerPorts()).isPinned());
  EXPECT_EQ(mirror().level(), PanelLevel::floating);
  EXPECT_TRUE(isDirectlyAbove(editorWindow));
  EXPECT_EQ(pin->symbol(), "pin.fill");
  EXPECT_EQ(pin->tint(), ButtonTint::controlAccent);

  pin->click();
  EXPECT_FALSE(platform.defaults.boolean("secondaryWindowPinned"));
  EXPECT_FALSE(mirror().isVisible());
  EXPECT_EQ(pin->symbol(), "pin.slash");
  EXPECT_EQ(pin->tint(), ButtonTint::secondaryLabel);
}

}  // namespace
}  // namespace orlet
