#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "window/CaptureOneFocus.h"
#include "window/TextCase.h"

namespace orlet {
namespace {

using test::FakePlatform;

TEST(CaptureOneFocus, RecognisesTheEditorByItsNameInAnyCase) {
  EXPECT_TRUE(CaptureOneFocus::isCaptureOne({"Capture One 23", std::nullopt, 1}));
  EXPECT_TRUE(CaptureOneFocus::isCaptureOne({"CAPTURE ONE PRO", std::nullopt, 1}));
  EXPECT_TRUE(CaptureOneFocus::isCaptureOne({"Éditeur Capture One", std::nullopt, 1}));
  EXPECT_FALSE(CaptureOneFocus::isCaptureOne({"CaptureOne", std::nullopt, 1}));
  EXPECT_FALSE(CaptureOneFocus::isCaptureOne({std::nullopt, "capture one", 1}));
}

TEST(TextCase, LowersAccentedCapitalsAndLeavesOtherTextIntact) {
  EXPECT_EQ(lowercased("ÉCOLE À PARIS"), "école à paris");
  EXPECT_EQ(lowercased("Capture One × 東京"), "capture one × 東京");
  EXPECT_EQ(lowercased("\xC3"), "\xC3");  // a truncated sequence is kept as it is
}

class EditorWindowsTest : public ::testing::Test {
 protected:
  void SetUp() override { controller.ensureWindow(); }

  FakePlatform platform;
  WindowController controller{platform.windowControllerPorts()};
};

TEST_F(EditorWindowsTest, TheTopWindowIsTheFrontmostOneLargerThanFiftyBothWays) {
  const auto editor = platform.launch("Capture One 23", 200, {0, 0, 51, 51});
  const auto real = platform.windowServer.stacking().front();
  platform.openWindow(200, {0, 0, 50, 400});  // palettes in front of it
  platform.openWindow(200, {0, 0, 400, 50});
  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), real);

  platform.windowServer.setWindowListAvailable(false);
  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), std::nullopt);
  platform.windowServer.setWindowListAvailable(true);
  platform.windowServer.hide(real);
  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), std::nullopt);

  // With only palettes, a pinned mirror goes in front of the editor or to the back.
  controller.setPinned(true);
  ASSERT_TRUE(controller.toggleWindow(nullptr));
  const auto mirror = controller.secondaryWindow()->windowNumber();
  const auto other = platform.launch("Finder", 300);
  platform.workspace.bringToFront(other);
  controller.handleFrontAppChange("finder", false);
  platform.scheduler.advance(WindowController::placementDelay);
  EXPECT_EQ(platform.windowServer.stacking().back(), mirror);

  platform.workspace.bringToFront(editor);
  controller.handleFrontAppChange("capture one 23", false);
  platform.scheduler.advance(WindowController::placementDelay);
  EXPECT_EQ(platform.windowServer.stacking().front(), mirror);
}

TEST_F(EditorWindowsTest, OfTwoEditorsTheFirstRunningOneIsUsed) {
  const auto first = platform.launch("Capture One 22", 200);
  const auto firstWindow = platform.windowServer.stacking().front();
  platform.launch("Capture One 23", 300);  // its window is in front

  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), firstWindow);
  CaptureOneFocus::activateIfRunning(platform.workspace);
  EXPECT_EQ(platform.workspace.frontmostApplication(), first);
}

}  // namespace
}  // namespace orlet
