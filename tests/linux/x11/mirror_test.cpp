#include "OrletHarness.h"
#include "WindowManager.h"

namespace orlet::x11test {
namespace {

using MirrorTest = OrletTest;

// A click on the button shows the mirror beside it, top edges aligned, and a second click hides
// it; neither those clicks nor one on the mirror's background (where a drag would move it) take
// the keyboard from the editor or the next click from the button, and neither window lets any
// window manager give it the keyboard (openbox alone would not try).
TEST_F(MirrorTest, ButtonTogglesTheMirrorAndTheEditorKeepsTheFocus) {
  startOrlet();
  const auto b = rectOf(button());
  const auto m = showMirror();
  EXPECT_EQ(m, (WindowRect{b.x + b.width, b.y, 900, 600}));
  EXPECT_TRUE(eventually([&] { return levelOf(mirror()) > levelOf(editorWindow_); }));
  EXPECT_FALSE(x_->acceptsFocus(mirror()));
  EXPECT_FALSE(x_->acceptsFocus(button()));
  EXPECT_TRUE(editorReceivesKey("a", "0x61"));

  click({m.x + 100, m.y + 300});
  EXPECT_TRUE(editorReceivesKey("b", "0x62"));
  EXPECT_EQ(editor_->output().find("click"), std::string::npos) << editor_->output();
  EXPECT_EQ(rectOf(mirror()), m);

  click(centreOf(b));
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
  EXPECT_TRUE(editorReceivesKey("c", "0x63"));
  EXPECT_EQ(x_->activeWindow(), editorWindow_);
}

// A mirror that another window covers entirely, the editor still in front, is brought forward by
// the button rather than hidden; once in sight, the next click hides it. Where the window manager
// does not restack for others, the mirror is never left covered: another program's raise is
// ignored (Mutter), or brings that window forward as the active one (xfwm4) and the mirror goes,
// as for any application that comes forward.
TEST_F(MirrorTest, ButtonRaisesACoveredMirrorInsteadOfHidingIt) {
  startOrlet();
  const auto m = showMirror();
  xdotool("windowmove " + std::to_string(otherWindow_) + " " + std::to_string(m.x - 20) + " 0" +
          " windowsize " + std::to_string(otherWindow_) + " " + std::to_string(m.width + 40) + " " +
          std::to_string(m.height + 40));
  raise(otherWindow_);
  if (!sessionWindowManager().restacksAboveSibling) {
    EXPECT_TRUE(eventually([&] {
      return x_->activeWindow() == otherWindow_ ? !isShown(mirror())
                                                : levelOf(mirror()) > levelOf(otherWindow_);
    }));
    return;
  }
  ASSERT_TRUE(eventually([&] {
    const auto o = rectOf(otherWindow_);
    return levelOf(otherWindow_) > levelOf(mirror()) && o.x <= m.x && o.width >= m.width + 20;
  }));
  ASSERT_EQ(x_->activeWindow(), editorWindow_);

  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return levelOf(mirror()) > levelOf(otherWindow_); }));
  EXPECT_TRUE(isShown(mirror()));
  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
}

// A click in the editor's window brings it over the unpinned mirror where they overlap; the
// button (and the shortcut alike) then brings the mirror forward rather than hiding it, on every
// window manager, compositing or not.
TEST_F(MirrorTest, ButtonBringsForwardAMirrorTheEditorCovers) {
  startOrlet();
  const auto m = showMirror();
  const auto e = rectOf(editorWindow_);
  ASSERT_LT(m.x + m.width, e.x + e.width - 20);
  ASSERT_TRUE(eventually([&] { return levelOf(mirror()) > levelOf(editorWindow_); }));
  click({m.x + m.width + 10, e.y + e.height / 2});
  ASSERT_TRUE(eventually([&] { return levelOf(editorWindow_) > levelOf(mirror()); }));
  ASSERT_TRUE(isShown(mirror()));

  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return levelOf(mirror()) > levelOf(editorWindow_); }));
  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
}

// Pinned, the mirror stays directly above the editor's main window, the palette between them
// included, and behind whichever application comes forward; unpinned, any other application
// hides it. Where the window manager does not restack above a sibling, the fallback: kept above
// while the editor is in front, left above the editor (not directly) behind another application.
TEST_F(MirrorTest, PinnedMirrorFollowsTheEditorInTheStack) {
  const bool restacks = sessionWindowManager().restacksAboveSibling;
  const auto aboveEditor = [&] {
    return restacks ? directlyAboveEditor() : levelOf(mirror()) > levelOf(editorWindow_);
  };
  startOrlet();
  const auto m = showMirror();
  click(pinButton(m));
  ASSERT_TRUE(eventually([&] { return setting("secondaryWindowPinned") == "true"; }));
  EXPECT_TRUE(eventually([&] { return pinned(); }));

  raise(paletteWindow_);
  ASSERT_TRUE(eventually([&] { return levelOf(paletteWindow_) > levelOf(editorWindow_); }));
  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return aboveEditor() && !pinned(); }));
  EXPECT_GT(levelOf(otherWindow_), levelOf(mirror()));
  if (restacks) {
    EXPECT_GT(levelOf(paletteWindow_), levelOf(mirror()));
  }

  activate(editorWindow_);
  EXPECT_TRUE(
      eventually([&] { return aboveEditor() && levelOf(otherWindow_) < levelOf(mirror()); }));
  EXPECT_TRUE(pinned());

  click(pinButton(m));  // unpinned while the editor is in front: hidden at once
  ASSERT_TRUE(eventually([&] { return setting("secondaryWindowPinned") == "false"; }));
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
  showMirror();
  activate(otherWindow_);
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
  activate(editorWindow_);
  EXPECT_TRUE(eventually([&] { return isShown(button()); }));
  EXPECT_FALSE(isShown(mirror()));
}

}  // namespace
}  // namespace orlet::x11test
