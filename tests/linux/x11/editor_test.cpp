#include "OrletHarness.h"
#include "WindowManager.h"

namespace orlet::x11test {
namespace {

template <EditorStandIn (*plays)()>
class BesideTest : public OrletTest {
 protected:
  void SetUp() override {
    editorStandIn_ = plays();
    OrletTest::SetUp();
  }
  // Opens "Éditeur", the bottom row's list, and picks the entry `typed` leads to.
  void chooseEditor(xcb_window_t settings, const std::string& typed) {
    const auto panel = rectOf(settings);
    click({panel.x + 215, panel.y + 177});
    ASSERT_TRUE(eventually([&] { return popup().has_value(); }));
    xdotool("type --delay 50 " + typed);
    xdotool("key Return");
  }
  bool aboveEditor() {
    return sessionWindowManager().restacksAboveSibling ? directlyAboveEditor()
                                                       : levelOf(mirror()) > levelOf(editorWindow_);
  }
};

using BesideDarktableTest = BesideTest<&EditorStandIn::darktable>;
using BesideAnImageViewerTest = BesideTest<&EditorStandIn::imageViewer>;

// With no settings at all, darktable is the editor: the button follows it, the pinned mirror stays
// directly above its window behind another application, and a click on the mirror makes darktable
// the active application again.
TEST_F(BesideDarktableTest, TheMirrorWorksBesideDarktableOutOfTheBox) {
  startOrlet();
  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return !isShown(button()); }));
  activate(editorWindow_);
  EXPECT_TRUE(eventually([&] { return isShown(button()); }));

  const auto m = showMirror();
  click(pinButton(m));
  ASSERT_TRUE(eventually([&] { return setting("secondaryWindowPinned") == "true"; }));
  ASSERT_TRUE(eventually([&] { return pinned(); }));
  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return aboveEditor() && !pinned(); }));
  EXPECT_GT(levelOf(otherWindow_), levelOf(mirror()));

  click({m.x + 100, m.y + 300});  // the mirror's background, clear of the other window
  EXPECT_TRUE(eventually([&] { return x_->activeWindow() == editorWindow_; }));
  EXPECT_TRUE(eventually([&] { return isShown(button()) && pinned() && aboveEditor(); }));
  EXPECT_TRUE(editorReceivesKey("a", "0x61"));
}

// An image viewer is no editor of the list: with none known, the button stays whatever is in
// front, and "Paramètres…" says why one should be chosen. Chosen there, it is the editor at once,
// the panel still open.
TEST_F(BesideAnImageViewerTest, WithNoEditorKnownTheButtonStaysUntilOneIsChosen) {
  startOrlet();
  activate(otherWindow_);
  EXPECT_FALSE(eventually([&] { return !isShown(button()); }, 1s));
  const auto settings = openSettings();
  ASSERT_NE(settings, XCB_NONE);
  EXPECT_EQ(rectOf(settings).height, 226);  // the hint below the editor's row

  chooseEditor(settings, "Image");
  EXPECT_TRUE(eventually([&] { return setting("editorName") == "Image Viewer"; }));
  // At once, the panel still open: shown only while the viewer is in front (some window managers
  // give it the keyboard as the list closes).
  EXPECT_TRUE(
      eventually([&] { return isShown(button()) == (x_->activeWindow() == editorWindow_); }));
  EXPECT_TRUE(isShown(settings));
  EXPECT_TRUE(eventually([&] { return rectOf(settings).height == 210; }));

  activate(editorWindow_);
  EXPECT_TRUE(eventually([&] { return isShown(button()); }));
  const auto m = showMirror();
  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()) && !isShown(button()); }));
  (void)m;
}

// The desktop's own furniture (here the notification area's dock) is no application to choose:
// typing its name in the list leads nowhere, and "Automatique" stays.
TEST_F(BesideAnImageViewerTest, TheDesktopsDocksAreNotOffered) {
  startOrlet();
  const auto settings = openSettings();
  ASSERT_NE(settings, XCB_NONE);
  chooseEditor(settings, "tray");
  EXPECT_TRUE(eventually([&] { return setting("editorName").has_value(); }));
  EXPECT_EQ(setting("editorName"), "");
}

struct Layout {
  const char* name;
  Spot mainCorner;
};

void PrintTo(const Layout& layout, std::ostream* out) {
  *out << layout.name;
}

class MainDisplayElsewhereTest : public OrletTest, public ::testing::WithParamInterface<Layout> {
 protected:
  void SetUp() override {
    sessionOptions_ = std::string("--layout ") + GetParam().name;
    OrletTest::SetUp();
  }
};

// The client's display left of the main one, or the main one left of it and lower with nothing
// at the desktop's origin: the button first appears at the main display's top-left corner and the
// mirror beside it, and so they do again when their saved places lie on no display any more.
TEST_P(MainDisplayElsewhereTest, OurWindowsFirstAppearOnTheMainDisplay) {
  const auto [x, y] = GetParam().mainCorner;
  for (const bool savedOffScreen : {false, true}) {
    if (savedOffScreen) {
      ASSERT_EQ(quitThroughMenu(), 0);
      presetSettings(
          "buttonWindowX=6000\nbuttonWindowY=3000\n"
          "secondaryWindowPositionX=6000\nsecondaryWindowPositionY=3000\n");
    }
    startOrlet();
    EXPECT_EQ(rectOf(button()), (WindowRect{x, y, 40, 40}));
    const auto m = showMirror();
    EXPECT_EQ(m.x, x + 40);
    EXPECT_EQ(m.y, y);
  }
}

INSTANTIATE_TEST_SUITE_P(Layouts, MainDisplayElsewhereTest,
                         ::testing::Values(Layout{"client-left", {2560, 0}},
                                           Layout{"main-below-left", {0, 1080}}),
                         [](const auto& info) {
                           return info.param.name[0] == 'c' ? "ClientLeft" : "MainBelowLeft";
                         });

}  // namespace
}  // namespace orlet::x11test
