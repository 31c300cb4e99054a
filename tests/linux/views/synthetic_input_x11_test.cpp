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

// A window at `r`, mapped above the others, that reports the button presses it receives.
xcb_window_t listeningWindow(const XConnection& x, const x11test::WindowRect& r) {
  const xcb_window_t window = xcb_generate_id(x.get());
  const std::uint32_t values[] = {1, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE};
  xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, window, x.root(), std::int16_t(r.x),
                    std::int16_t(r.y), std::uint16_t(r.width), std::uint16_t(r.height), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  xcb_map_window(x.get(), window);
  x.flush();
  return window;
}

// The presses `x` has received so far (a round trip first, so that all sent have arrived).
int pressesOn(const XConnection& x) {
  free(xcb_get_input_focus_reply(x.get(), xcb_get_input_focus(x.get()), nullptr));
  int presses = 0;
  while (xcb_generic_event_t* event = xcb_poll_for_event(x.get())) {
    presses += (event->response_type & 0x7f) == XCB_BUTTON_PRESS;
    free(event);
  }
  return presses;
}

// A click replayed on the picture of ORLET's own display would land on ORLET's own windows and be
// replayed from there again: such a click is dropped, and any other still lands.
TEST(X11SyntheticInputTest, AClickOnOurOwnWindowsIsDroppedAndOthersLand) {
  x11test::XProbe probe;
  std::string error;
  auto ours = XConnection::open(nullptr, &error);
  auto theirs = XConnection::open(nullptr, &error);
  ASSERT_TRUE(ours && theirs) << error;
  std::ostringstream diagnostics;
  X11SyntheticInput input(*ours, diagnostics);
  listeningWindow(*ours, {600, 100, 200, 200});
  listeningWindow(*theirs, {900, 100, 200, 200});
  pressesOn(*ours);
  pressesOn(*theirs);
  for (int i = 0; i < 2; ++i) {
    input.leftButtonDown({700, 200});
    input.leftButtonUp({700, 200});
  }
  input.leftButtonDown({1000, 200});
  input.leftButtonUp({1000, 200});
  EXPECT_EQ(pressesOn(*theirs), 1);
  EXPECT_EQ(pressesOn(*ours), 0);
  EXPECT_EQ(probe.pointer(), (std::pair{1000, 200}));
  EXPECT_EQ(diagnostics.str(),
            "orlet: un clic sur le miroir qui tomberait sur les fenêtres d'ORLET n'est "
            "pas reproduit\n");
}

}  // namespace
}  // namespace orlet::x11
