// The enlarged mirror as the operator works through it: clicks replayed on the display, the
// cursor drawn where the pointer stands, and the pointer crossing between the two.
#include <algorithm>
#include <csignal>
#include <cstdio>

#include "OrletHarness.h"
#include "WindowManager.h"
#include "views/MirrorGeometry.h"

namespace orlet::x11test {
namespace {

constexpr std::uint32_t kEditorColour = 0x4a6078;
// The editor's viewer window on the second display; its pointer is a crosshair.
constexpr WindowRect kViewer{2000, 100, 1200, 600};

Point toDisplay(const Rect& picture, Point screen) {
  return {kSecondDisplay.x + (screen.x - picture.x) / picture.width * kSecondDisplay.width,
          kSecondDisplay.y + (screen.y - picture.y) / picture.height * kSecondDisplay.height};
}

Spot toMirror(const Rect& picture, Point global) {
  return {int(picture.x + (global.x - kSecondDisplay.x) / kSecondDisplay.width * picture.width),
          int(picture.y + (global.y - kSecondDisplay.y) / kSecondDisplay.height * picture.height)};
}

bool closeTo(std::pair<int, int> pointer, Point expected, double tolerance = 1.5) {
  return std::abs(pointer.first - expected.x) <= tolerance &&
         std::abs(pointer.second - expected.y) <= tolerance;
}

int count(const std::string& text, const std::string& what) {
  int n = 0;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

class InteractionTest : public OrletTest {
 protected:
  // These tests need the viewer and the mirror where they ask to be, and the screen as the
  // applications drew it. Under a window manager that places new windows itself (xfwm4: on the
  // first display; Mutter: moved inwards) the viewer must at least lie whole on one display;
  // under one that composites, what is read back is the compositor's picture. The tests then
  // end there, saying why.
  void SetUp() override {
    editorViewerGeometry_ = "1200x600+2000+100";
    OrletTest::SetUp();
    const auto& wm = sessionWindowManager();
    if (HasFatalFailure() || (wm.placesWhereAsked && !wm.composites)) return;
    const auto viewer = rectOf(viewerWindow_);
    EXPECT_TRUE(eventually([&] { return x_->withinOneDisplay(rectOf(viewerWindow_)); }))
        << viewer.x << "," << viewer.y;
    GTEST_SKIP() << wm.name << (wm.composites ? " composites the screen" : "")
                 << (wm.placesWhereAsked ? "" : " places new windows itself")
                 << " (the editor's viewer asked for 2000,100, is at " << viewer.x << ","
                 << viewer.y << ")";
  }

  // Shows the mirror, waits until the second display's card shows the editor's viewer, and
  // chooses that display; the panel's place.
  WindowRect enlargeSecondDisplay() {
    const WindowRect m = showMirror();
    const Rect card = thumbnail(m, 1);
    const Point viewerInCard = viewPoint(card, {0.25, 0.25});
    EXPECT_TRUE(eventually(
        [&] {
          return near(x_->pixel(m.x + int(viewerInCard.x), m.y + int(viewerInCard.y)),
                      kEditorColour);
        },
        15s));
    click(cardCentre(m));
    // The enlarged picture shows the display's dark desktop where the grid's background was.
    EXPECT_TRUE(
        eventually([&] { return isDark(x_->pixel(m.x + m.width / 2, m.y + m.height - 60)); }));
    return m;
  }
  // The middle of the second display's card.
  static Spot cardCentre(const WindowRect& m) {
    const Rect card = thumbnail(m, 1);
    return {m.x + int(card.midX()), m.y + int(card.midY())};
  }
  static bool isDark(std::uint32_t rgb) {
    return ((rgb >> 16) & 0xff) + ((rgb >> 8) & 0xff) + (rgb & 0xff) < 3 * 0x90;
  }

  // Nothing changes for a while: what a test waits out to see that something does not happen.
  bool staysFor(std::chrono::milliseconds duration, const std::function<bool()>& condition) {
    return !eventually([&] { return !condition(); }, duration);
  }

  std::pair<int, int> pointer() { return x_->pointer(); }
  void moveTo(int x, int y) { xdotool("mousemove " + std::to_string(x) + " " + std::to_string(y)); }
  // The same, ending as a mouse's move does, with raw motion (the server sends none for an
  // absolute test move): what a program watching the pointer's input sees of a hand.
  void handMoveTo(int x, int y) {
    xdotool("mousemove " + std::to_string(x - 1) + " " + std::to_string(y) +
            " mousemove_relative 1 0");
  }
};

// The mirror of the second display, placed on that display itself (so the pointer over it is
// already on the display and never jumps): each click on the picture lands as a real press and
// release on the editor's window under the matching point; drags and letterbox clicks send
// nothing; the editor stays the active application.
TEST_F(InteractionTest, ClicksOnThePictureLandOnTheDisplay) {
  presetSettings("secondaryWindowPositionX=3560\nsecondaryWindowPositionY=820\n");
  startOrlet();
  const WindowRect m = enlargeSecondDisplay();
  ASSERT_EQ(m.x, 3560);
  const Rect picture = enlargedOnScreen(m);
  ASSERT_TRUE(eventually(
      [&] {
        const Spot s = toMirror(picture, {2560, 400});
        return near(x_->pixel(s.x, s.y), kEditorColour);
      },
      10s));

  int releases = 0;
  const auto clickAt = [&](Spot s) {
    click(s);
    ++releases;
    return eventually([&] { return count(editor_->output(), "release 1 ") == releases; });
  };
  for (const Point global : {Point{2560, 360}, Point{2176, 144}, Point{3150, 690}}) {
    const Spot s = toMirror(picture, global);
    const Point target = toDisplay(picture, {double(s.x), double(s.y)});
    ASSERT_TRUE(clickAt(s)) << editor_->output();
    const auto log = editor_->output();
    int px = 0, py = 0, rx = 0, ry = 0;
    std::sscanf(log.c_str() + log.rfind("click 1 "), "click 1 %d %d", &px, &py);
    std::sscanf(log.c_str() + log.rfind("release 1 "), "release 1 %d %d", &rx, &ry);
    EXPECT_TRUE(closeTo({px, py}, target, 1) && closeTo({rx, ry}, target, 1))
        << px << "," << py << " / " << rx << "," << ry << " for " << target.x << "," << target.y;
    EXPECT_TRUE(closeTo(pointer(), target, 1));  // the pointer stays where the click landed

    ASSERT_TRUE(
        eventually([&] { return orlet_->output().find("→ click: (") != std::string::npos; }));
    const auto out = orlet_->output();
    const auto line = out.rfind("Display bounds: (1920.0, 0.0, 2560.0, 1440.0) → click: (");
    ASSERT_NE(line, std::string::npos) << out;
    double cx = 0, cy = 0;
    std::sscanf(out.c_str() + out.find('(', out.find("click: (", line)), "(%lf, %lf)", &cx, &cy);
    EXPECT_NEAR(cx, target.x, 0.06);
    EXPECT_NEAR(cy, target.y, 0.06);
  }

  // A drag over the picture and a click on the letterbox band above it send nothing: the next
  // click is the only one to arrive.
  const Spot from = toMirror(picture, {2600, 400});
  xdotool("mousemove " + std::to_string(from.x) + " " + std::to_string(from.y) +
          " mousedown 1 mousemove " + std::to_string(from.x + 3) + " " +
          std::to_string(from.y + 3) + " mouseup 1");
  click({m.x + m.width / 2, m.y + 20});
  ASSERT_TRUE(clickAt(toMirror(picture, {2300, 300})));
  EXPECT_EQ(count(editor_->output(), "click 1 "), releases);
  EXPECT_EQ(count(orlet_->output(), "Display bounds: "), releases);
  const auto active = x_->activeWindow();
  EXPECT_TRUE(active == editorWindow_ || active == viewerWindow_) << active;
}

// The cursor is drawn on the miniature where the pointer stands on the shown display, follows
// it, takes the shape the desktop gives it there, and is not drawn for the other display.
TEST_F(InteractionTest, TheCursorIsDrawnWhereThePointerStands) {
  x_->paint({3400, 900, 600, 400}, kEditorColour);  // the desktop's own pointer over it
  startOrlet();
  const WindowRect m = enlargeSecondDisplay();
  const Rect picture = enlargedOnScreen(m);
  // Any pixel of the box right of and below the hot spot (an arrow's body) or left of it (only
  // a crosshair's arm) that is not the background.
  const auto drawn = [&](Spot s, int dx0, int dx1, int dy0, int dy1) {
    for (const auto pixel : x_->pixels({s.x + dx0, s.y + dy0, dx1 - dx0, dy1 - dy0})) {
      if (!near(pixel, kEditorColour)) return true;
    }
    return false;
  };
  const auto arrowAt = [&](Spot s) { return drawn(s, 1, 8, 3, 12) && !drawn(s, -8, -3, -1, 2); };
  const auto crosshairAt = [&](Spot s) { return drawn(s, -8, -3, -1, 2); };
  const auto clean = [&](Spot s) { return !drawn(s, -8, 8, -8, 12); };

  for (const Point p : {Point{3700, 1100}, Point{3900, 1200}}) {
    moveTo(int(p.x), int(p.y));
    EXPECT_TRUE(eventually([&] { return arrowAt(toMirror(picture, p)); }, 3s)) << p.x;
  }
  EXPECT_TRUE(clean(toMirror(picture, {3700, 1100})));  // followed: the old place is clean

  moveTo(2600, 400);  // over the viewer, whose pointer is a crosshair
  const Spot viewer = toMirror(picture, {2600, 400});
  EXPECT_TRUE(eventually([&] { return crosshairAt(viewer); }, 3s));

  moveTo(1000, 900);  // on the main display: nothing drawn on this mirror
  EXPECT_TRUE(eventually([&] { return clean(viewer) && clean(toMirror(picture, {3900, 1200})); }));
}

// A card chosen under the pointer enlarges its picture there and the pointer stays; moving into
// the picture, even once after a rest, takes it to the display at once; back 20 points beside
// the picture from an edge, whether the pointer stops on it or crosses it between two samples;
// another application in front stops the way in, not the way back; dragging the mirror stops
// both.
TEST_F(InteractionTest, ThePointerCrossesBetweenMirrorAndDisplay) {
  startOrlet();
  const WindowRect m = enlargeSecondDisplay();  // the picture then lies under the pointer
  const Rect picture = enlargedOnScreen(m);
  const Spot chosen = cardCentre(m);
  EXPECT_TRUE(staysFor(400ms,
                       [&] {
                         return pointer() == std::pair{chosen.x, chosen.y};
                       }))
      << pointer().first << "," << pointer().second;

  // Out of the picture, a rest long enough for the sampling to slow down, and one move in.
  const int aside = int(picture.y) - 20;
  // One move of each kind: a mouse's (relative, with raw motion) and an absolute one (the
  // server reports none for it), each after a rest.
  for (const std::string move : {"mousemove_relative 0 60", "mousemove 400 300"}) {
    moveTo(chosen.x, aside);
    EXPECT_TRUE(staysFor(1200ms, [&] { return pointer() == std::pair{chosen.x, aside}; }));
    xdotool(move);
    EXPECT_TRUE(eventually([&] { return pointer().first >= kSecondDisplay.x; }, 400ms))
        << move << ": " << pointer().first;
    moveTo(1921, 720);
    EXPECT_TRUE(eventually([&] { return pointer().first < kSecondDisplay.x; }));
  }
  moveTo(chosen.x, chosen.y);
  const Point in = toDisplay(picture, {double(chosen.x), double(chosen.y)});
  EXPECT_TRUE(eventually([&] { return closeTo(pointer(), in); })) << pointer().first;

  const Point beside{picture.x - 20, picture.y + picture.height / 2};
  for (const int step : {4, 9}) {  // stopping on the edge; over it between two samples
    moveTo(3000, 720);
    moveTo(1925, 720);
    moveTo(1925 - step, 720);
    EXPECT_TRUE(eventually([&] { return closeTo(pointer(), beside); }))
        << step << ": " << pointer().first;
    moveTo(int(picture.x) + 40, int(picture.midY()));
    EXPECT_TRUE(eventually([&] { return pointer().first >= kSecondDisplay.x; }));
  }
  moveTo(1921, 720);
  EXPECT_TRUE(eventually([&] { return closeTo(pointer(), beside); })) << pointer().first;
  EXPECT_EQ(x_->activeWindow(), editorWindow_);

  // Dragged by its band above the picture, the way a hand moves, across the display's edge and
  // let go further in: no jump while the pointer is on the edge, so the mirror ends where the
  // hand took it. (Let go on the edge itself, KWin and metacity would tile it there.)
  const int grab = m.x + m.width / 2, release = 2120;
  moveTo(grab, m.y + 20);
  xdotool("mousedown 1");
  int x = grab + 40;
  for (; x < 1880; x += 40) moveTo(x, m.y + 20);
  WindowRect moving;  // where the mirror follows the pointer, once it has caught up
  ASSERT_TRUE(eventually([&] {
    const auto now = rectOf(mirror());
    return now.x > m.x + 1000 && std::exchange(moving, now) == now;
  }));
  const int held = x - 40 - moving.x;  // where the hand holds it, from its left edge
  moveTo(1921, m.y + 20);
  EXPECT_TRUE(staysFor(250ms,
                       [&] {
                         return pointer() == std::pair<int, int>{1921, m.y + 20};
                       }))
      << pointer().first << "," << pointer().second << " mirror at " << rectOf(mirror()).x;
  for (x = 1961; x < release; x += 40) moveTo(x, m.y + 20);
  moveTo(release, m.y + 20);
  xdotool("mouseup 1");
  EXPECT_TRUE(eventually([&] {
    const auto r = rectOf(mirror());
    return std::abs(r.x - (release - held)) <= 2 && r.y == m.y && r.width == m.width;
  })) << rectOf(mirror()).x
      << "," << rectOf(mirror()).y << " " << rectOf(mirror()).width;
  EXPECT_EQ(x_->activeWindow(), editorWindow_);

  // Pinned, the mirror stays while another application is in front; the pointer stays in it.
  const WindowRect moved = rectOf(mirror());
  const Rect now = enlargedOnScreen(moved);
  click({moved.x + moved.width - 19, moved.y + 19});
  ASSERT_TRUE(eventually([&] { return setting("secondaryWindowPinned") == "true"; }));
  activate(otherWindow_);
  moveTo(1921, 720);
  const Point besideNow{now.x - 20, now.y + now.height / 2};
  EXPECT_TRUE(eventually([&] { return closeTo(pointer(), besideNow); })) << pointer().first;
  moveTo(int(now.x) + 160, int(now.y) + 200);
  EXPECT_TRUE(staysFor(400ms, [&] {
    return pointer() == std::pair<int, int>{int(now.x) + 160, int(now.y) + 200};
  }));
}

// The editor brought over part of the unpinned mirror hides the picture there: moving into the
// covered part keeps the pointer on the operator's screen, on into the part still seen takes it
// to the display.
TEST_F(InteractionTest, OnlyTheVisiblePartOfThePictureLetsThePointerIn) {
  startOrlet();
  const WindowRect m = enlargeSecondDisplay();
  const Rect picture = enlargedOnScreen(m);
  const int middle = int(picture.midX());
  xdotool("windowmove " + std::to_string(editorWindow_) + " " + std::to_string(middle - 800) + " " +
          std::to_string(int(picture.y)));
  ASSERT_TRUE(eventually([&] { return rectOf(editorWindow_).x != 300; }));
  const WindowRect editor = rectOf(editorWindow_);
  const int border = editor.x + editor.width;  // of the covered part
  ASSERT_TRUE(picture.x + 300 < border && border < picture.maxX() - 300) << border;
  ASSERT_GT(editor.y + editor.height, m.y + m.height + 20);
  click({border - 100, m.y + m.height + 20});  // in the editor below the mirror: it comes over
  ASSERT_TRUE(eventually([&] {
    const auto order = x_->visibleStacking();
    const auto at = [&](xcb_window_t w) { return std::find(order.begin(), order.end(), w); };
    return at(editorWindow_) > at(mirror());
  }));

  const int y = int(picture.midY());
  handMoveTo(border - 200, int(picture.y) - 20);
  handMoveTo(border - 200, y);  // into the covered part
  EXPECT_TRUE(staysFor(400ms, [&] {
    return pointer() == std::pair{border - 200, y};
  })) << pointer().first;
  handMoveTo(border + 200, y);  // on to the part still seen
  const Point in = toDisplay(picture, {double(border + 200), double(y)});
  EXPECT_TRUE(eventually([&] { return closeTo(pointer(), in); })) << pointer().first;
}

// The enlarged picture fills the panel's width: a pointer brought onto the panel's right edge
// stays on the operator's screen, in a band where a drag resizes the panel.
TEST_F(InteractionTest, ThePanelsEdgeResizesItInsteadOfLettingThePointerIn) {
  startOrlet();
  const WindowRect m = enlargeSecondDisplay();
  const int edge = m.x + m.width - 3, y = m.y + m.height / 2;
  const int beside = m.x + m.width + 30;
  handMoveTo(beside, y);
  EXPECT_TRUE(staysFor(1200ms, [&] { return pointer() == std::pair{beside, y}; }));  // seen
  handMoveTo(edge, y);
  EXPECT_TRUE(staysFor(400ms,
                       [&] {
                         return pointer() == std::pair{edge, y};
                       }))
      << pointer().first << "," << pointer().second;
  xdotool("mousedown 1");
  for (int x = edge + 20; x <= edge + 100; x += 20) moveTo(x, y);
  xdotool("mouseup 1");
  EXPECT_TRUE(eventually([&] {
    const auto r = rectOf(mirror());
    return r.width >= m.width + 80 && r.x == m.x;
  })) << rectOf(mirror()).width;
}

// A flick of the floating button (press, a fast move of a few hundred pixels, release) moves it
// and does not toggle the mirror, even when ORLET reads the events only after the pointer has
// come to rest, as on a loaded machine: here it is stopped while the flick happens.
TEST_F(OrletTest, AFlickMovesTheButtonWithoutToggling) {
  startOrlet();
  const WindowRect b = rectOf(button());
  const Spot c = centreOf(b);
  kill(orlet_->pid(), SIGSTOP);
  xdotool("mousemove " + std::to_string(c.x) + " " + std::to_string(c.y) +
          " mousedown 1 mousemove " + std::to_string(c.x + 300) + " " + std::to_string(c.y + 200) +
          " mouseup 1");
  kill(orlet_->pid(), SIGCONT);
  EXPECT_TRUE(eventually([&] {
    return rectOf(button()) == WindowRect{b.x + 300, b.y + 200, b.width, b.height};
  }));
  // Had the flick toggled the mirror, this click would hide it again.
  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return isShown(mirror()); }));
}

}  // namespace
}  // namespace orlet::x11test
