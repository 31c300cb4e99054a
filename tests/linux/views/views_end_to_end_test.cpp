// ORLET itself on a real X session: the mirror panel's views with the real capture, as the
// operator sees them on screen. The probe paints the displays and reads the screen back.
#include <fstream>

#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

constexpr std::uint32_t kQuarters[4] = {0xD02020, 0x20B040, 0x2040D0, 0xE0C020};
constexpr std::uint32_t kMainMark = 0xC020C0;  // bottom-right of the main display

// `rgb` under the veil over a picture that is no longer live: black at 150/255.
std::uint32_t dimmed(std::uint32_t rgb) {
  std::uint32_t result = 0;
  for (int shift : {0, 8, 16}) result |= (((rgb >> shift) & 0xFF) * 105 / 255) << shift;
  return result;
}

// Threads of `pid` that carry the program's own name: the main thread and the capture threads,
// which are not named otherwise (the toolkit names its own).
int unnamedThreads(pid_t pid) {
  const auto firstLine = [](const std::filesystem::path& path) {
    std::string line;
    std::getline(std::ifstream(path), line);
    return line;
  };
  const auto process = std::filesystem::path("/proc") / std::to_string(pid);
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(process / "task")) {
    if (firstLine(entry.path() / "comm") == firstLine(process / "comm")) ++count;
  }
  return count;
}

class ViewsEndToEnd : public OrletTest {
 protected:
  void SetUp() override {
    OrletTest::SetUp();
    second_ = x_->paint({1920, 0, 2560, 1440}, 0x303030);
    for (int i = 0; i < 4; ++i) x_->fill(second_, quarter(i), kQuarters[i]);
    x_->paint({1600, 900, 320, 180}, kMainMark);
  }

  static WindowRect quarter(int i) { return {(i % 2) * 1280, (i / 2) * 720, 1280, 720}; }
  // The screen under relative point `rel` of a picture at `picture` in the panel `m`.
  std::uint32_t shown(const WindowRect& m, const Rect& picture, Point rel) {
    return x_->pixel(m.x + int(picture.x + rel.x * picture.width),
                     m.y + int(picture.y + rel.y * picture.height));
  }
  bool showsQuarters(const WindowRect& m, const Rect& picture) {
    for (int i = 0; i < 4; ++i) {
      if (!near(shown(m, picture, {0.25 + 0.5 * (i % 2), 0.25 + 0.5 * (i / 2)}), kQuarters[i])) {
        return false;
      }
    }
    return true;
  }

  xcb_window_t second_ = XCB_NONE;
};

TEST_F(ViewsEndToEnd, MirrorShowsTheDisplaysLiveAndTheChosenOneLarge) {
  startOrlet();
  const int threadsBefore = unnamedThreads(orlet_->pid());
  const WindowRect m = showMirror();
  ASSERT_EQ(m.width, 900);
  ASSERT_EQ(m.height, 600);

  // Both displays as live cards, the main one first: the second card shows the quarters.
  ASSERT_TRUE(eventually([&] { return showsQuarters(m, thumbnail(m, 1)); }, 15s));
  EXPECT_FALSE(showsQuarters(m, thumbnail(m, 0)));
  EXPECT_GT(unnamedThreads(orlet_->pid()), threadsBefore);

  // Choosing it shows it large, and what is drawn next appears in the mirror.
  const Rect card = thumbnail(m, 1);
  click({m.x + int(card.midX()), m.y + int(card.midY())});
  ASSERT_TRUE(eventually([&] { return showsQuarters(m, enlarged(m)); }, 10s));
  x_->fill(second_, quarter(0), 0xF0F0F0);
  EXPECT_TRUE(eventually([&] { return near(shown(m, enlarged(m), {0.25, 0.25}), 0xF0F0F0); }));
  x_->fill(second_, quarter(0), kQuarters[0]);
  // The back button, 22 x 22 at 8 from the top-left corner, returns to the grid. Each click
  // aims at a slightly different spot: xdotool waits in vain for a pointer move to where the
  // pointer already is.
  const Spot backButton{m.x + 8 + 11, m.y + 8 + 11};
  click(backButton);
  EXPECT_TRUE(eventually(
      [&] { return showsQuarters(m, thumbnail(m, 1)) && !showsQuarters(m, enlarged(m)); }));

  // The back button is gone: a click at its place now chooses the first card, the main
  // display, whose corner mark then fills the bottom-right of the picture.
  click({backButton.x + 2, backButton.y});
  EXPECT_TRUE(eventually(
      [&] {
        return near(shown(m, enlarged(m), {0.93, 0.93}), kMainMark);
      },
      10s));
  click({backButton.x - 2, backButton.y});  // and back again
  EXPECT_TRUE(eventually([&] { return showsQuarters(m, thumbnail(m, 1)); }));

  // Hiding the panel stops every capture.
  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return !isShown(mirror()); }));
  EXPECT_TRUE(eventually([&] { return unnamedThreads(orlet_->pid()) == threadsBefore; }, 10s))
      << unnamedThreads(orlet_->pid()) << " threads, " << threadsBefore << " before";
}

// Unplugging the chosen display dims its last picture under a caption; plugging the same output
// back (xrandr places it over the main display) brings the mirror back live, with what is there.
TEST_F(ViewsEndToEnd, AnUnpluggedDisplayIsDimmedUntilItIsPluggedBack) {
  startOrlet();
  const WindowRect m = showMirror();
  ASSERT_TRUE(eventually([&] { return showsQuarters(m, thumbnail(m, 1)); }, 15s));
  const Rect card = thumbnail(m, 1);
  click({m.x + int(card.midX()), m.y + int(card.midY())});
  ASSERT_TRUE(eventually([&] { return showsQuarters(m, enlarged(m)); }, 10s));

  const auto xrandr = [&](const std::string& arguments) {
    return std::system(("DISPLAY=" + session_->display() + " xrandr " + arguments).c_str());
  };
  ASSERT_EQ(xrandr("--output DUMMY1 --off"), 0);
  EXPECT_TRUE(eventually(
      [&] {
        for (int i = 0; i < 4; ++i) {
          const Point at{0.25 + 0.5 * (i % 2), 0.25 + 0.5 * (i / 2)};
          if (!near(shown(m, enlarged(m), at), dimmed(kQuarters[i]))) return false;
        }
        return true;
      },
      10s))
      << std::hex << shown(m, enlarged(m), {0.25, 0.25});
  // The caption: white text across the middle of the picture.
  const auto middle = x_->pixels({m.x + 300, m.y + int(enlarged(m).midY()) - 10, 300, 20});
  EXPECT_TRUE(std::any_of(middle.begin(), middle.end(), [](auto p) { return near(p, 0xFFFFFF); }));

  // The server may turn down the first --auto when another client has just read its
  // configuration (xrandr then says nothing): plug it in until it is there.
  ASSERT_TRUE(eventually([&] {
    return xrandr("--output DUMMY1 --auto") == 0 && xrandr("--listmonitors | grep -q DUMMY1") == 0;
  }));
  EXPECT_TRUE(eventually(
      [&] {
        return near(shown(m, enlarged(m), {0.93, 0.93}), kMainMark);
      },
      10s))
      << std::hex << shown(m, enlarged(m), {0.93, 0.93});
}

}  // namespace
}  // namespace orlet::x11test
