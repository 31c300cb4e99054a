// Clicks at one root point, again and again, as a mouse would (XTEST: motion, press, release),
// and prints for each click the moment the server had handled the release, on the monotonic
// clock all processes share, in microseconds:
//   orlet_interaction_clicker <x> <y> <count> <interval ms>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>

namespace {

long long now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<long long>(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

// A round trip: every request sent before it has been handled by the server.
void sync(xcb_connection_t* c) {
  std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: %s x y count interval-ms\n", argv[0]);
    return 2;
  }
  const auto x = static_cast<std::int16_t>(std::atoi(argv[1]));
  const auto y = static_cast<std::int16_t>(std::atoi(argv[2]));
  const int count = std::atoi(argv[3]);
  const auto interval = std::chrono::milliseconds(std::atoi(argv[4]));
  int screenNumber = 0;
  xcb_connection_t* c = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(c)) return 1;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
  for (int i = 0; i < count; ++i) {
    xcb_test_fake_input(c, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, x, y, XCB_NONE);
    xcb_test_fake_input(c, XCB_BUTTON_PRESS, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, XCB_NONE);
    sync(c);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    xcb_test_fake_input(c, XCB_BUTTON_RELEASE, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, XCB_NONE);
    sync(c);
    std::printf("%lld\n", now());
    std::fflush(stdout);
    std::this_thread::sleep_for(interval);
  }
  xcb_disconnect(c);
  return 0;
}
