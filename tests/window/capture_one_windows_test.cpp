#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "window/CaptureOneFocus.h"
#include "window/TextCase.h"

namespace orlet {
namespace {

using test::FakePlatform;

// Automatic: Capture One by a part of its name, the Linux editors by theirs, a short name only
// as the first word. Chosen: that one application alone, by its whole name.
TEST(EditorRecognition, RecognisesTheEditorByItsNameInAnyCase) {
  struct Case {
    std::optional<std::string> name;
    bool automatic, chosenEog;
  };
  const Case cases[] = {
      {"Capture One 23", true, false},
      {"CAPTURE ONE PRO", true, false},
      {"ÉDITEUR Capture One", true, false},
      {"CaptureOne", false, false},
      {"Darktable", true, false},
      {"darktable 4.8", true, false},
      {"RawTherapee", true, false},
      {"ART", true, false},
      {"ART 1.21", true, false},
      {"Pixel Art", false, false},
      {"Smart Notes", false, false},
      {"Ansel", true, false},
      {"digiKam", true, false},
      {"Entangle", true, false},
      {"GIMP", false, false},
      {"Eye of GNOME", false, true},
      {"eye of gnome", false, true},
      {"Eye of GNOME 2", false, false},
      {std::nullopt, false, false},
  };
  FakePlatform platform;
  for (const auto& c : cases) {
    const RunningApplication app{c.name, "capture one", 1};  // identifiers are never consulted
    platform.editorChoice.choose("");
    EXPECT_EQ(platform.editor.isEditor(app), c.automatic) << c.name.value_or("-");
    platform.editorChoice.choose("Eye of GNOME");
    EXPECT_EQ(platform.editor.isEditor(app), c.chosenEog) << c.name.value_or("-");
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
  platform.editor.activateIfRunning();
  EXPECT_EQ(platform.workspace.frontmostApplication(), first);
}

// The pin button's tool tip reads as it always has beside Capture One and names any other
// editor, following a new choice at once and a newly started editor when the mirror next shows.
TEST(EditorRecognition, ThePinButtonNamesTheEditor) {
  FakePlatform platform;
  WindowController controller(platform.windowControllerPorts());
  controller.ensureWindow();
  const auto& pin = *platform.panels.panel(PanelContent::mirror)->button(PanelCorner::topTrailing);
  auto toolTip = [](const std::string& name) {
    return "Épingler la fenêtre (rester visible quand " + name + " est au premier plan)";
  };
  EXPECT_EQ(pin.toolTip, toolTip("votre éditeur photo"));
  const auto showAgain = [&] {
    if (!controller.toggleWindow(nullptr)) controller.toggleWindow(nullptr);
  };
  platform.workspace.installed.push_back({"Darktable", "org.darktable.darktable", "", {}});
  showAgain();
  EXPECT_EQ(pin.toolTip, toolTip("Darktable"));
  platform.launch("Capture One 23", 200);
  showAgain();
  EXPECT_EQ(pin.toolTip,
            "Épingler la fenêtre (rester visible quand Capture One est au premier plan)");
  platform.editorChoice.choose("GIMP");
  controller.editorChoiceDidChange();
  EXPECT_EQ(pin.toolTip, toolTip("GIMP"));
}

}  // namespace
}  // namespace orlet
