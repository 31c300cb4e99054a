#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

bool savedAs(const std::optional<std::string>& value, int expected) {
  return value && std::stod(*value) == expected;
}

// The button's place and the mirror's frame are written the moment they change, so they are
// back after ORLET quits through its status menu and starts again.
TEST_F(OrletTest, ButtonAndMirrorFramesSurviveARestart) {
  startOrlet();
  drag(centreOf(rectOf(button())), {220, 420});
  const WindowRect b{200, 400, 40, 40};
  EXPECT_TRUE(eventually([&] { return rectOf(button()) == b; }));
  EXPECT_TRUE(eventually([&] {
    return savedAs(setting("buttonWindowX"), 200) && savedAs(setting("buttonWindowY"), 400);
  }));

  const auto shown = showMirror();
  drag({shown.x + 300, shown.y + 200}, {shown.x + 420, shown.y + 260});  // by its background
  // The window manager may still be catching up with the pointer: wait until it stops.
  WindowRect moved;
  ASSERT_TRUE(eventually([&] {
    const auto now = rectOf(mirror());
    const bool settled = now.x != shown.x && now == moved;
    moved = now;
    return settled;
  }));
  const Spot corner{moved.x + moved.width - 2, moved.y + moved.height - 2};
  drag(corner, {corner.x - 100, corner.y - 100});  // by its bottom-right grip
  EXPECT_TRUE(eventually([&] {
    moved = rectOf(mirror());
    return moved.width != shown.width && moved.height != shown.height &&
           savedAs(setting("secondaryWindowPositionX"), moved.x) &&
           savedAs(setting("secondaryWindowPositionY"), moved.y) &&
           savedAs(setting("secondaryWindowWidth"), moved.width) &&
           savedAs(setting("secondaryWindowHeight"), moved.height);
  })) << "mirror at "
      << moved.x << "," << moved.y << " " << moved.width << "x" << moved.height;

  EXPECT_EQ(quitThroughMenu(), 0);
  startOrlet();
  EXPECT_EQ(rectOf(button()), b);
  showMirror();
  EXPECT_TRUE(eventually([&] { return rectOf(mirror()) == moved; }));
}

}  // namespace
}  // namespace orlet::x11test
