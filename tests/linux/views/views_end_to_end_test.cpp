// ORLET itself on a real X session: the mirror panel's views with the real capture, as the
// operator sees them on screen. The other client paints the displays; the test reads the
// screen back.
#include <filesystem>
#include <fstream>

#include "OrletHarness.h"
#include "foundation/Geometry.h"
#include "linux/views/PatternClient.h"
#include "views/AdaptiveGrid.h"
#include "views/MirrorGeometry.h"

namespace orlet::x11test {
namespace {

constexpr std::uint32_t kQuarters[4] = {0xD02020, 0x20B040, 0x2040D0, 0xE0C020};
constexpr std::uint32_t kMainMark = 0xC020C0;  // bottom-right of the main display
constexpr Size kDisplaySize{2560, 1440};       // both outputs are 16:9
constexpr double kThumbnailHeight = 120;
constexpr double kShadowMargin = 6;

bool near(std::uint32_t a, std::uint32_t b) {
  for (int shift : {0, 8, 16}) {
    if (std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)) > 24) return false;
  }
  return true;
}

std::string firstLine(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

// Threads of `pid` that carry the program's own name: the main thread and the capture threads,
// which are not named otherwise (the toolkit names its own).
int unnamedThreads(pid_t pid) {
  const auto process = std::filesystem::path("/proc") / std::to_string(pid);
  const std::string programName = firstLine(process / "comm");
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(process / "task")) {
    if (firstLine(entry.path() / "comm") == programName) ++count;
  }
  return count;
}

class ViewsEndToEnd : public OrletTest {
 protected:
  void SetUp() override {
    OrletTest::SetUp();
    painter_ = std::make_unique<test::PatternClient>(session_->display().c_str());
    second_ = painter_->window(1920, 0, 2560, 1440, 0x303030);
    for (int i = 0; i < 4; ++i) {
      painter_->fill(second_, (i % 2) * 1280, (i / 2) * 720, 1280, 720, kQuarters[i]);
    }
    painter_->window(1600, 900, 320, 180, kMainMark);
  }
  void TearDown() override {
    painter_.reset();
    OrletTest::TearDown();
  }

  WindowRect showMirror() {
    click(centreOf(rectOf(button())));
    EXPECT_TRUE(eventually([&] { return isShown(mirror()); }));
    return mirror() ? rectOf(*mirror()) : WindowRect{};
  }
  // The screen under relative point `rel` of a picture at `picture` in the panel `m`.
  std::uint32_t shown(const WindowRect& m, const Rect& picture, Point rel) {
    const Point p = viewPoint(picture, rel);
    return painter_->pixel(m.x + int(p.x), m.y + int(p.y));
  }
  bool showsQuarters(const WindowRect& m, const Rect& picture) {
    for (int i = 0; i < 4; ++i) {
      if (!near(shown(m, picture, {0.25 + 0.5 * (i % 2), 0.25 + 0.5 * (i / 2)}), kQuarters[i])) {
        return false;
      }
    }
    return true;
  }
  // The thumbnail picture of the card at `index` of the grid in the panel `m`.
  static Rect thumbnail(const WindowRect& m, int index) {
    const Rect cell = AdaptiveGrid{}.cells(m.width, index + 1, kThumbnailHeight).back();
    const Rect inner{cell.x + kShadowMargin, cell.y + kShadowMargin, cell.width - 2 * kShadowMargin,
                     kThumbnailHeight};
    const Rect fit = mirrorPictureRect(kDisplaySize, inner.size());
    return {inner.x + fit.x, inner.y + fit.y, fit.width, fit.height};
  }
  static Rect enlarged(const WindowRect& m) {
    return mirrorPictureRect(kDisplaySize, {double(m.width), double(m.height)});
  }
  // With ORLET_SCREENSHOT_DIR set, keeps a picture of the screen for a person to look at.
  void screenshot(const std::string& name) {
    const char* directory = std::getenv("ORLET_SCREENSHOT_DIR");
    if (!directory) return;
    const std::string command = "import -window root -display " + session_->display() + " " +
                                directory + "/" + name + " 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
  }
  void openSecondCardDetails(const WindowRect& m) {
    // The "•••" button sits right of the centred caption, under the thumbnail.
    const Rect cell = AdaptiveGrid{}.cells(m.width, 2, kThumbnailHeight).back();
    const int y = m.y + int(cell.y + kThumbnailHeight + 2 * kShadowMargin + 12);
    for (int dx = 10; dx <= 60; dx += 5) {
      click({m.x + int(cell.midX()) + dx, y});
      if (eventually([&] { return popover().has_value(); }, 500ms)) return;
    }
  }
  std::optional<xcb_window_t> popover() {
    for (auto w : x_->topLevelsOf(orlet_->pid())) {
      if (x_->isOverrideRedirect(w) && x_->isViewable(w)) return w;
    }
    return std::nullopt;
  }

  std::unique_ptr<test::PatternClient> painter_;
  xcb_window_t second_ = XCB_NONE;
};

TEST_F(ViewsEndToEnd, MirrorShowsTheDisplaysLiveAndTheChosenOneLarge) {
  startOrlet();
  const int threadsBefore = unnamedThreads(orlet_->pid());
  const WindowRect m = showMirror();

  // Both displays as live cards, the main one first: the second card shows the quarters.
  ASSERT_TRUE(eventually([&] { return showsQuarters(m, thumbnail(m, 1)); }, 15s))
      << orlet_->output();
  EXPECT_FALSE(showsQuarters(m, thumbnail(m, 0)));
  EXPECT_GT(unnamedThreads(orlet_->pid()), threadsBefore);
  screenshot("orlet-grid.png");
  openSecondCardDetails(m);
  EXPECT_TRUE(popover().has_value());
  screenshot("orlet-popover.png");
  click({m.x + m.width / 2, m.y + m.height - 60});  // elsewhere: the details close
  EXPECT_TRUE(eventually([&] { return !popover().has_value(); }));

  // Choosing it shows it large; the back button returns to the grid.
  const Rect card = thumbnail(m, 1);
  click({m.x + int(card.midX()), m.y + int(card.midY())});
  ASSERT_TRUE(eventually([&] { return showsQuarters(m, enlarged(m)); }, 10s));
  screenshot("orlet-enlarged.png");
  // What the other client draws next appears in the mirror.
  painter_->fill(second_, 0, 0, 1280, 720, 0xF0F0F0);
  EXPECT_TRUE(eventually([&] { return near(shown(m, enlarged(m), {0.25, 0.25}), 0xF0F0F0); }));
  painter_->fill(second_, 0, 0, 1280, 720, kQuarters[0]);
  // The back button, 22 x 22 at 8 from the top-left corner. Each click aims at a slightly
  // different spot: xdotool waits in vain for a pointer move to where the pointer already is.
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

}  // namespace
}  // namespace orlet::x11test
