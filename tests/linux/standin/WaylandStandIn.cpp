// A small Wayland application for the integration tests on a wlroots compositor: one window of a
// chosen app_id, title, size and colour, which prints what its pointer receives so that tests
// can assert on it.
//
//   orlet_wayland_standin --app-id darktable --title darktable --size 800x600 [--color 4a6078]
//
// stdout, one line each, flushed at once:
//   window                  the window is shown
//   enter <x> <y>           the pointer entered it, at that spot of the window
//   click <x> <y>           the left button went down there
//   release <x> <y>         and up
#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "xdg-shell-client.h"

namespace {

struct Options {
  std::string appId = "standin", title = "Stand-in";
  int width = 640, height = 480;
  std::uint32_t color = 0x506070;
};

struct App {
  Options options;
  wl_compositor* compositor = nullptr;
  wl_shm* shm = nullptr;
  wl_seat* seat = nullptr;
  xdg_wm_base* wmBase = nullptr;
  wl_surface* surface = nullptr;
  wl_buffer* buffer = nullptr;
  double x = 0, y = 0;
  bool shown = false;
};

void say(const char* format, double x, double y) {
  std::printf(format, static_cast<int>(x), static_cast<int>(y));
  std::fflush(stdout);
}

void enter(void* data, wl_pointer*, std::uint32_t, wl_surface*, wl_fixed_t x, wl_fixed_t y) {
  auto& app = *static_cast<App*>(data);
  app.x = wl_fixed_to_double(x);
  app.y = wl_fixed_to_double(y);
  say("enter %d %d\n", app.x, app.y);
}
void leave(void*, wl_pointer*, std::uint32_t, wl_surface*) {}
void motion(void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
  auto& app = *static_cast<App*>(data);
  app.x = wl_fixed_to_double(x);
  app.y = wl_fixed_to_double(y);
}
void button(void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button,
            std::uint32_t state) {
  auto& app = *static_cast<App*>(data);
  if (button != BTN_LEFT) return;
  say(state == WL_POINTER_BUTTON_STATE_PRESSED ? "click %d %d\n" : "release %d %d\n", app.x, app.y);
}
void axis(void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {}
void frame(void*, wl_pointer*) {}
void axisSource(void*, wl_pointer*, std::uint32_t) {}
void axisStop(void*, wl_pointer*, std::uint32_t, std::uint32_t) {}
void axisDiscrete(void*, wl_pointer*, std::uint32_t, std::int32_t) {}
// By member, since newer protocol versions add events this one does not take.
wl_pointer_listener pointerListener() {
  wl_pointer_listener l{};
  l.enter = enter, l.leave = leave, l.motion = motion, l.button = button, l.axis = axis;
  l.frame = frame, l.axis_source = axisSource, l.axis_stop = axisStop;
  l.axis_discrete = axisDiscrete;
  return l;
}

void capabilities(void* data, wl_seat* seat, std::uint32_t caps) {
  static wl_pointer* pointer = nullptr;
  if ((caps & WL_SEAT_CAPABILITY_POINTER) && !pointer) {
    pointer = wl_seat_get_pointer(seat);
    static const auto listener = pointerListener();
    wl_pointer_add_listener(pointer, &listener, data);
  }
}
void seatName(void*, wl_seat*, const char*) {}
const wl_seat_listener seatListener{capabilities, seatName};

void ping(void*, xdg_wm_base* base, std::uint32_t serial) {
  xdg_wm_base_pong(base, serial);
}
const xdg_wm_base_listener wmBaseListener{ping};

void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
            std::uint32_t) {
  auto& app = *static_cast<App*>(data);
  const std::string is = interface;
  if (is == wl_compositor_interface.name) {
    app.compositor =
        static_cast<wl_compositor*>(wl_registry_bind(registry, name, &wl_compositor_interface, 4));
  } else if (is == wl_shm_interface.name) {
    app.shm = static_cast<wl_shm*>(wl_registry_bind(registry, name, &wl_shm_interface, 1));
  } else if (is == wl_seat_interface.name) {
    app.seat = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 5));
    wl_seat_add_listener(app.seat, &seatListener, &app);
  } else if (is == xdg_wm_base_interface.name) {
    app.wmBase =
        static_cast<xdg_wm_base*>(wl_registry_bind(registry, name, &xdg_wm_base_interface, 1));
    xdg_wm_base_add_listener(app.wmBase, &wmBaseListener, &app);
  }
}
void globalRemove(void*, wl_registry*, std::uint32_t) {}
const wl_registry_listener registryListener{global, globalRemove};

wl_buffer* paint(App& app) {
  const int stride = app.options.width * 4, size = stride * app.options.height;
  const int fd = memfd_create("orlet-standin", MFD_CLOEXEC);
  if (fd < 0 || ftruncate(fd, size) != 0) std::exit(1);
  auto* pixels =
      static_cast<std::uint32_t*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  for (int i = 0; i < app.options.width * app.options.height; ++i) {
    pixels[i] = 0xff000000 | app.options.color;
  }
  munmap(pixels, size);
  auto* pool = wl_shm_create_pool(app.shm, fd, size);
  auto* buffer = wl_shm_pool_create_buffer(pool, 0, app.options.width, app.options.height, stride,
                                           WL_SHM_FORMAT_XRGB8888);
  wl_shm_pool_destroy(pool);
  close(fd);
  return buffer;
}

void configure(void* data, xdg_surface* surface, std::uint32_t serial) {
  auto& app = *static_cast<App*>(data);
  xdg_surface_ack_configure(surface, serial);
  if (!app.buffer) app.buffer = paint(app);
  wl_surface_attach(app.surface, app.buffer, 0, 0);
  wl_surface_damage(app.surface, 0, 0, app.options.width, app.options.height);
  wl_surface_commit(app.surface);
  if (!app.shown) {
    app.shown = true;
    std::printf("window\n");
    std::fflush(stdout);
  }
}
const xdg_surface_listener surfaceListener{configure};

void toplevelConfigure(void*, xdg_toplevel*, std::int32_t, std::int32_t, wl_array*) {}
void toplevelClose(void*, xdg_toplevel*) {
  std::exit(0);
}
xdg_toplevel_listener toplevelListener() {
  xdg_toplevel_listener l{};
  l.configure = toplevelConfigure, l.close = toplevelClose;
  return l;
}

Options parse(int argc, char** argv) {
  Options o;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string key = argv[i], value = argv[i + 1];
    if (key == "--app-id") o.appId = value;
    if (key == "--title") o.title = value;
    if (key == "--size") std::sscanf(value.c_str(), "%dx%d", &o.width, &o.height);
    if (key == "--color")
      o.color = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 16));
  }
  return o;
}

}  // namespace

int main(int argc, char** argv) {
  App app;
  app.options = parse(argc, argv);
  wl_display* display = wl_display_connect(nullptr);
  if (!display) return 1;
  wl_registry_add_listener(wl_display_get_registry(display), &registryListener, &app);
  wl_display_roundtrip(display);
  if (!app.compositor || !app.shm || !app.wmBase) return 1;
  app.surface = wl_compositor_create_surface(app.compositor);
  auto* surface = xdg_wm_base_get_xdg_surface(app.wmBase, app.surface);
  xdg_surface_add_listener(surface, &surfaceListener, &app);
  auto* toplevel = xdg_surface_get_toplevel(surface);
  static const auto listener = toplevelListener();
  xdg_toplevel_add_listener(toplevel, &listener, &app);
  xdg_toplevel_set_app_id(toplevel, app.options.appId.c_str());
  xdg_toplevel_set_title(toplevel, app.options.title.c_str());
  xdg_toplevel_set_min_size(toplevel, app.options.width, app.options.height);
  xdg_toplevel_set_max_size(toplevel, app.options.width, app.options.height);
  wl_surface_commit(app.surface);
  while (wl_display_dispatch(display) >= 0) {
  }
  return 0;
}
