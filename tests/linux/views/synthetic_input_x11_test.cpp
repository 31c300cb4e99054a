#include <gtest/gtest.h>

#include <sstream>

#include "XProbe.h"
#include "linux/x11/X11SyntheticInput.h"

namespace orlet::x11 {
namespace {

// A warp from a rectangle: the server checks that the pointer is still inside it in the same
// step as the move, edges included, so a reading of ours that came late moves nothing.
TEST(X11SyntheticInputTest, AWarpFromARectangleMovesOnlyAPointerStillInIt) {
  x11test::XProbe probe;
  std::string error;
  auto x = XConnection::open(nullptr, &error);
  ASSERT_TRUE(x) << error;
  std::ostringstream diagnostics;
  X11SyntheticInput input(*x, diagnostics);
  const Rect picture{100, 100, 400, 225};
  const Point display{3000, 700};
  struct Case {
    Point from;
    bool moves;
  };
  const Case cases[] = {{{100, 100}, true},  {{499, 324}, true}, {{500, 200}, false},
                        {{300, 325}, false}, {{99, 200}, false}, {{300, 212}, true}};
  for (const auto& c : cases) {
    input.warpPointer(c.from, std::nullopt);
    input.warpPointer(display, picture);
    const Point expected = c.moves ? display : c.from;
    EXPECT_EQ(probe.pointer(), (std::pair{int(expected.x), int(expected.y)}))
        << c.from.x << "," << c.from.y;
  }
  input.warpPointer({10, 10}, Rect{});  // an empty rectangle holds no pointer
  EXPECT_EQ(probe.pointer(), (std::pair{int(display.x), int(display.y)}));
}

}  // namespace
}  // namespace orlet::x11
