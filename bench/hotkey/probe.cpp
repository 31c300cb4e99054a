// Types on the session through XTEST and watches ORLET's mirror window, for the shortcut
// benchmark (bench/hotkey/run.sh).
//
//   orlet_hotkey_probe keys <count>              <count> presses and releases of X, then waits
//                                                until the server has handled them all
//   orlet_hotkey_probe toggle <count> <window>   Ctrl+K <count> times; for each, "map" or
//                                                "unmap", the microseconds from the key-down to
//                                                it, and to ORLET's first reaction
//   orlet_hotkey_probe baseline <count>          the same for a window the probe maps itself
#include <poll.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

struct Session {
  xcb_connection_t* c = xcb_connect(nullptr, nullptr);
  xcb_key_symbols_t* symbols = xcb_key_symbols_alloc(c);
  xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;

  xcb_keycode_t code(xcb_keysym_t keysym) const {
    xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols, keysym);
    const xcb_keycode_t first = codes ? codes[0] : 0;
    std::free(codes);
    return first;
  }
  void key(xcb_keycode_t code, bool press) {
    xcb_test_fake_input(c, press ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, root, 0,
                        0, 0);
  }
  void sync() { std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); }
};

void typeKeys(Session& s, int count) {
  const auto x = s.code('x');
  for (int i = 0; i < count; ++i) {
    s.key(x, true);
    s.key(x, false);
    if (i % 100 == 99) s.sync();  // keeps the server's queue short
  }
  s.sync();
}

struct MapChange {
  int type = 0;  // XCB_MAP_NOTIFY or XCB_UNMAP_NOTIFY; 0 when none came within a second
  Clock::time_point at;
  // ORLET writes the window's EWMH state just before it maps it: the moment it reacted, before
  // the window manager and the server have done their part.
  std::optional<Clock::time_point> firstProperty;
};

MapChange waitForMapChange(Session& s) {
  MapChange change;
  const auto deadline = Clock::now() + std::chrono::seconds(1);
  while (Clock::now() < deadline) {
    xcb_generic_event_t* event = xcb_poll_for_event(s.c);
    if (!event) {
      pollfd fd{xcb_get_file_descriptor(s.c), POLLIN, 0};
      poll(&fd, 1, 100);
      continue;
    }
    const auto type = event->response_type & 0x7f;
    std::free(event);
    if (type == XCB_PROPERTY_NOTIFY && !change.firstProperty) change.firstProperty = Clock::now();
    if (type == XCB_MAP_NOTIFY || type == XCB_UNMAP_NOTIFY) {
      change.type = type;
      change.at = Clock::now();
      return change;
    }
  }
  return change;
}

void drain(Session& s) {
  s.sync();
  while (xcb_generic_event_t* event = xcb_poll_for_event(s.c)) std::free(event);
}

long long micros(Clock::duration d) {
  return std::chrono::duration_cast<std::chrono::microseconds>(d).count();
}

int toggle(Session& s, int count, xcb_window_t window) {
  const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(s.c, window, XCB_CW_EVENT_MASK, &mask);
  const auto control = s.code(0xffe3), k = s.code('k');
  for (int i = 0; i < count; ++i) {
    s.key(control, true);
    drain(s);
    const auto start = Clock::now();
    s.key(k, true);
    xcb_flush(s.c);
    const auto change = waitForMapChange(s);
    s.key(k, false);
    s.key(control, false);
    s.sync();
    if (!change.type) {
      std::fprintf(stderr, "no map change after toggle %d\n", i);
      return 1;
    }
    const auto reacted =
        change.type == XCB_MAP_NOTIFY && change.firstProperty ? *change.firstProperty : change.at;
    std::printf("%s %lld %lld\n", change.type == XCB_MAP_NOTIFY ? "map" : "unmap",
                micros(change.at - start), micros(reacted - start));
    std::this_thread::sleep_for(std::chrono::milliseconds(60));  // let the window settle
  }
  return 0;
}

// The same measure for a plain window of the probe's own that it maps and unmaps itself: what
// the window manager and the server take, with no shortcut involved.
int baseline(Session& s, int count) {
  const xcb_window_t window = xcb_generate_id(s.c);
  const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_create_window(s.c, XCB_COPY_FROM_PARENT, window, s.root, 100, 100, 900, 600, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
  for (int i = 0; i < count; ++i) {
    const bool show = i % 2 == 0;
    drain(s);
    const auto start = Clock::now();
    if (show) {
      xcb_map_window(s.c, window);
    } else {
      xcb_unmap_window(s.c, window);
    }
    xcb_flush(s.c);
    const auto change = waitForMapChange(s);
    if (!change.type) return 1;
    std::printf("%s %lld %lld\n", show ? "map" : "unmap", micros(change.at - start),
                micros(change.at - start));
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Session s;
  if (xcb_connection_has_error(s.c) || argc < 3) return 2;
  const std::string mode = argv[1];
  const int count = std::atoi(argv[2]);
  if (mode == "keys") {
    typeKeys(s, count);
    return 0;
  }
  if (mode == "baseline") return baseline(s, count);
  if (mode == "toggle" && argc == 4) {
    return toggle(s, count, static_cast<xcb_window_t>(std::strtoul(argv[3], nullptr, 0)));
  }
  return 2;
}
