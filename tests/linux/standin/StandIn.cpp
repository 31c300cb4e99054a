// A small application for the integration tests: one or more top-level windows with a chosen
// WM_CLASS, title and place, which print what they receive so that tests can assert on it.
//
//   orlet_standin --class CaptureOne --title "Capture One 23" --geometry 800x600+100+100
//                 [--palette 40x40+950+100] [--viewer 1200x600+2000+100] [--color 336699]
//                 [--churn 100]
//
// The viewer is a third window whose pointer is a crosshair, where the others show the
// desktop's pointer. With --churn, once its windows exist, it opens that many more windows one
// after another, each brought forward and destroyed again after 0 to 80 ms, as an application
// opening and closing dialogs does; then it reports how many.
//
// stdout, one line each, flushed at once:
//   window <main window id> <palette id or 0x0> <viewer id or 0x0>   once the windows exist
//   click <button> <root x> <root y> <window id> <monotonic clock, microseconds>
//   release <button> <root x> <root y> <window id> <monotonic clock, microseconds>
//   key <keysym, hex>       a key pressed
//   keyup <keysym, hex>     a key released
//   churned <count>         the churn is over
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>
#include <xcb/xcb_icccm.h>
#include <xcb/xcb_keysyms.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

struct Options {
  std::string instance = "standin";
  std::string className = "StandIn";
  std::string title = "Stand-in";
  std::string geometry = "640x480+100+100";
  std::string palette;  // a second, small window of the same application
  std::string viewer;   // a third one, with a crosshair pointer
  std::uint32_t color = 0x506070;
  int churn = 0;
};

struct Geometry {
  int x = 0, y = 0;
  unsigned width = 100, height = 100;
};

Geometry parseGeometry(const std::string& text) {
  Geometry g;
  std::sscanf(text.c_str(), "%ux%u+%d+%d", &g.width, &g.height, &g.x, &g.y);
  return g;
}

Options parse(int argc, char** argv) {
  Options o;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string key = argv[i], value = argv[i + 1];
    if (key == "--class") o.className = value;
    if (key == "--instance") o.instance = value;
    if (key == "--title") o.title = value;
    if (key == "--geometry") o.geometry = value;
    if (key == "--palette") o.palette = value;
    if (key == "--viewer") o.viewer = value;
    if (key == "--churn") o.churn = std::atoi(value.c_str());
    if (key == "--color")
      o.color = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 16));
  }
  return o;
}

// Title, class, owner, input hint and a position of the user's choosing (ICCCM 4.1.2,
// USPosition), as a regular application sets them.
void describe(xcb_connection_t* c, xcb_ewmh_connection_t& ewmh, xcb_window_t w, const Options& o,
              const Geometry& g) {
  xcb_ewmh_set_wm_name(&ewmh, w, o.title.size(), o.title.c_str());
  const std::string wmClass = o.instance + '\0' + o.className + '\0';
  xcb_icccm_set_wm_class(c, w, wmClass.size(), wmClass.c_str());
  xcb_ewmh_set_wm_pid(&ewmh, w, static_cast<std::uint32_t>(getpid()));
  xcb_icccm_wm_hints_t hints{};
  xcb_icccm_wm_hints_set_input(&hints, 1);
  xcb_icccm_wm_hints_set_normal(&hints);
  xcb_icccm_set_wm_hints(c, w, &hints);
  xcb_size_hints_t size{};
  xcb_icccm_size_hints_set_position(&size, 1, g.x, g.y);
  xcb_icccm_size_hints_set_size(&size, 1, g.width, g.height);
  xcb_icccm_set_wm_normal_hints(c, w, &size);
}

// The crosshair of the server's built-in cursor font (X11 cursorfont.h XC_crosshair), black on
// white.
xcb_cursor_t crosshair(xcb_connection_t* c) {
  constexpr std::uint16_t kCrosshair = 34;
  const xcb_font_t font = xcb_generate_id(c);
  xcb_open_font(c, font, 6, "cursor");
  const xcb_cursor_t cursor = xcb_generate_id(c);
  xcb_create_glyph_cursor(c, cursor, font, font, kCrosshair, kCrosshair + 1, 0, 0, 0, 0xffff,
                          0xffff, 0xffff);
  xcb_close_font(c, font);
  return cursor;
}

xcb_window_t open(xcb_connection_t* c, xcb_ewmh_connection_t& ewmh, xcb_screen_t* screen,
                  const Options& o, const std::string& geometry,
                  xcb_cursor_t cursor = XCB_CURSOR_NONE) {
  const Geometry g = parseGeometry(geometry);
  const xcb_window_t w = xcb_generate_id(c);
  const std::uint32_t values[] = {o.color,
                                  XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                      XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                      XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                  cursor};
  xcb_create_window(c, XCB_COPY_FROM_PARENT, w, screen->root, static_cast<std::int16_t>(g.x),
                    static_cast<std::int16_t>(g.y), static_cast<std::uint16_t>(g.width),
                    static_cast<std::uint16_t>(g.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_CURSOR,
                    values);
  describe(c, ewmh, w, o, g);
  xcb_map_window(c, w);
  return w;
}

// When an event was read, on the clock every process of the machine shares.
long long now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<long long>(t.tv_sec) * 1000000 + t.tv_nsec / 1000;
}

void report(const char* format, auto... args) {
  std::printf(format, args...);
  std::putchar('\n');
  std::fflush(stdout);
}

void run(xcb_connection_t* c, xcb_key_symbols_t* keys) {
  while (xcb_generic_event_t* event = xcb_wait_for_event(c)) {
    const auto type = event->response_type & 0x7f;
    if (type == XCB_BUTTON_PRESS) {
      const auto* e = reinterpret_cast<xcb_button_press_event_t*>(event);
      report("click %u %d %d 0x%x %lld", e->detail, e->root_x, e->root_y, e->event, now());
    } else if (type == XCB_BUTTON_RELEASE) {
      const auto* e = reinterpret_cast<xcb_button_release_event_t*>(event);
      report("release %u %d %d 0x%x %lld", e->detail, e->root_x, e->root_y, e->event, now());
    } else if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
      const auto* e = reinterpret_cast<xcb_key_press_event_t*>(event);
      report(type == XCB_KEY_PRESS ? "key 0x%x" : "keyup 0x%x",
             xcb_key_symbols_get_keysym(keys, e->detail, 0));
    } else if (type == XCB_MAPPING_NOTIFY) {
      // Another keyboard layout: keys are named from the new one, as any application names them.
      xcb_refresh_keyboard_mapping(keys, reinterpret_cast<xcb_mapping_notify_event_t*>(event));
    }
    std::free(event);
  }
}

}  // namespace

// Asks the window manager to activate `w` as a pager would (source 2), which it does at once.
void bringForward(xcb_ewmh_connection_t& ewmh, int screen, xcb_window_t w) {
  xcb_ewmh_request_change_active_window(&ewmh, screen, w, XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER,
                                        XCB_CURRENT_TIME, XCB_NONE);
}

void churn(xcb_connection_t* c, xcb_ewmh_connection_t& ewmh, int screenNumber, const Options& o,
           xcb_window_t main) {
  const Geometry g = parseGeometry(o.geometry);
  const std::string geometry = std::to_string(g.width) + "x" + std::to_string(g.height) + "+" +
                               std::to_string(g.x + 30) + "+" + std::to_string(g.y + 30);
  for (int i = 0; i < o.churn; ++i) {
    const xcb_window_t w = open(c, ewmh, ewmh.screens[screenNumber], o, geometry);
    bringForward(ewmh, screenNumber, w);
    xcb_flush(c);
    const timespec pause{0, (i % 9) * 10'000'000L};
    nanosleep(&pause, nullptr);
    xcb_destroy_window(c, w);
    xcb_flush(c);
  }
  bringForward(ewmh, screenNumber, main);
  std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));  // all handled
  report("churned %d", o.churn);
}

int main(int argc, char** argv) {
  const Options options = parse(argc, argv);
  int screenNumber = 0;
  xcb_connection_t* c = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(c)) {
    std::fprintf(stderr, "orlet_standin: cannot connect to the X server\n");
    return 1;
  }
  xcb_ewmh_connection_t ewmh;
  xcb_ewmh_init_atoms_replies(&ewmh, xcb_ewmh_init_atoms(c, &ewmh), nullptr);
  xcb_screen_t* screen = ewmh.screens[screenNumber];
  const xcb_window_t main = open(c, ewmh, screen, options, options.geometry);
  const xcb_window_t palette =
      options.palette.empty() ? XCB_NONE : open(c, ewmh, screen, options, options.palette);
  const xcb_window_t viewer = options.viewer.empty()
                                  ? XCB_NONE
                                  : open(c, ewmh, screen, options, options.viewer, crosshair(c));
  xcb_flush(c);
  report("window 0x%x 0x%x 0x%x", main, palette, viewer);
  if (options.churn > 0) churn(c, ewmh, screenNumber, options, main);
  xcb_key_symbols_t* keys = xcb_key_symbols_alloc(c);
  run(c, keys);
  return 0;
}
