#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "window/CaptureOneFocus.h"
#include "window/TextCase.h"

namespace orlet {
namespace {

using test::FakePlatform;

TEST(EditorRecognition, RecognisesTheEditorByItsNameInAnyCase) {
  const std::pair<RunningApplication, bool> cases[] = {
      {{"Capture One 23", std::nullopt, 1}, true},
      {{"CAPTURE ONE PRO", std::nullopt, 1}, true},
      {{"ÉDITEUR Capture One", std::nullopt, 1}, true},
      {{"CaptureOne", std::nullopt, 1}, false},
      {{std::nullopt, "capture one", 1}, false},  // identifiers are never consulted
  };
  for (const auto& [app, editor] : cases) {
    EXPECT_EQ(CaptureOneFocus::isCaptureOne(app), editor) << app.localizedName.value_or("-");
  }
  EXPECT_EQ(lowercased("ÉCOLE À PARIS × 東京"), "école à paris × 東京");
  EXPECT_EQ(lowercased("\xC3"), "\xC3");  // a truncated sequence is kept as it is
}

// The mirror is stacked against the editor's frontmost window larger than 50 x 50 both ways,
// never against a palette; with no such window it goes to the front or the back.
TEST(EditorRecognition, TheTopWindowIsTheFrontmostOneLargerThanFiftyBothWays) {
  FakePlatform platform;
  WindowController controller(platform.windowControllerPorts());
  const auto editor = platform.launch("Capture One 23", 200, {0, 0, 51, 51});
  const auto real = platform.windowServer.stacking().front();
  platform.windowServer.openWindow(200, {0, 0, 50, 400});  // palettes in front of it
  platform.windowServer.openWindow(200, {0, 0, 400, 50});
  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), real);
  platform.windowServer.setWindowListAvailable(false);
  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), std::nullopt);
  platform.windowServer.setWindowListAvailable(true);
  platform.windowServer.hide(real);
  EXPECT_EQ(controller.getTopCaptureOneWindowNumber(), std::nullopt);

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

TEST(EditorRecognition, OfTwoEditorsTheFirstRunningOneIsUsed) {
  FakePlatform platform;
  const auto first = platform.launch("Capture One 22", 200);
  const auto firstWindow = platform.windowServer.stacking().front();
  platform.launch("Capture One 23", 300);  // its window is in front
  EXPECT_EQ(WindowController(platform.windowControllerPorts()).getTopCaptureOneWindowNumber(),
            firstWindow);
  CaptureOneFocus::activateIfRunning(platform.workspace);
  EXPECT_EQ(platform.workspace.frontmostApplication(), first);
}

}  // namespace
}  // namespace orlet
