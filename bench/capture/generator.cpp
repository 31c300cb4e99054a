// Draws on one display at a steady rate so the capture paths have something to read, and logs
// when each numbered picture was on screen. Every picture carries its number in a 16x16 stamp at
// the window's top-left corner (pixel value 0xFF000000 | number).
//
//   orlet_capture_generator DISPLAY X Y WIDTH HEIGHT MODE SECONDS LOGFILE
//   MODE: full (every pixel changes), box (a 200x200 square moves), typing (one 16x16 change
//   every 500 ms), static (one picture, then nothing)
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int fps = 60;
constexpr long periodNs = 1000000000L / fps;
constexpr int stampSize = 16;
constexpr int boxSize = 200;
constexpr std::uint32_t background = 0x203040;

std::int64_t nowNs() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return std::int64_t(t.tv_sec) * 1000000000 + t.tv_nsec;
}

struct Canvas {
  xcb_connection_t* c;
  xcb_window_t window;
  xcb_gcontext_t gc;
  int width, height;
  std::uint8_t depth;

  void sync() { std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); }

  void fill(int x, int y, int w, int h, std::uint32_t rgb) {
    xcb_change_gc(c, gc, XCB_GC_FOREGROUND, &rgb);
    const xcb_rectangle_t r{std::int16_t(x), std::int16_t(y), std::uint16_t(w), std::uint16_t(h)};
    xcb_poly_fill_rectangle(c, window, gc, 1, &r);
  }

  void stamp(std::uint32_t number) {
    std::vector<std::uint32_t> pixels(stampSize * stampSize, 0xFF000000u | (number & 0xFFFFFF));
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc, stampSize, stampSize, 0, 0, 0, depth,
                  std::uint32_t(pixels.size() * 4), reinterpret_cast<std::uint8_t*>(pixels.data()));
  }
};

// Two full pictures in shared memory that differ in every pixel, put alternately.
struct FullMotion {
  xcb_shm_seg_t segment[2];
  std::uint32_t* pixels[2];

  explicit FullMotion(Canvas& canvas) {
    const std::size_t count = std::size_t(canvas.width) * canvas.height;
    for (int i = 0; i < 2; ++i) {
      const int fd = memfd_create("generator", MFD_CLOEXEC);
      if (ftruncate(fd, off_t(count * 4)) != 0) std::exit(1);
      pixels[i] = static_cast<std::uint32_t*>(
          mmap(nullptr, count * 4, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
      for (std::size_t p = 0; p < count; ++p) {
        const std::uint32_t v = std::uint32_t(p * 2654435761u) & 0xFFFFFF;
        pixels[i][p] = i == 0 ? v : (~v & 0xFFFFFF);
      }
      segment[i] = xcb_generate_id(canvas.c);
      xcb_shm_attach_fd(canvas.c, segment[i], fd, 1);
    }
  }

  void draw(Canvas& canvas, std::uint32_t number) {
    const int i = number % 2;
    for (int y = 0; y < stampSize; ++y) {
      for (int x = 0; x < stampSize; ++x) pixels[i][y * canvas.width + x] = 0xFF000000u | number;
    }
    xcb_shm_put_image(canvas.c, canvas.window, canvas.gc, std::uint16_t(canvas.width),
                      std::uint16_t(canvas.height), 0, 0, std::uint16_t(canvas.width),
                      std::uint16_t(canvas.height), 0, 0, canvas.depth, XCB_IMAGE_FORMAT_Z_PIXMAP,
                      0, segment[i], 0);
  }
};

void drawBox(Canvas& canvas, std::uint32_t number) {
  const int travel = canvas.width - boxSize;
  auto xAt = [&](std::uint32_t n) {
    const int step = int((n * 8) % std::uint32_t(2 * travel));
    return step < travel ? step : 2 * travel - step;
  };
  const int y = 100;
  canvas.fill(xAt(number - 1), y, boxSize, boxSize, background);
  canvas.fill(xAt(number), y, boxSize, boxSize, 0x4080FF ^ (number * 0x010203 & 0xFFFFFF));
  canvas.stamp(number);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 9) {
    std::fprintf(stderr, "usage: %s DISPLAY X Y WIDTH HEIGHT MODE SECONDS LOGFILE\n", argv[0]);
    return 2;
  }
  const std::string mode = argv[6];
  const double seconds = std::atof(argv[7]);
  Canvas canvas{};
  canvas.c = xcb_connect(argv[1], nullptr);
  if (xcb_connection_has_error(canvas.c)) return 1;
  xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(canvas.c)).data;
  canvas.width = std::atoi(argv[4]);
  canvas.height = std::atoi(argv[5]);
  canvas.depth = screen->root_depth;
  canvas.window = xcb_generate_id(canvas.c);
  const std::uint32_t values[] = {background, 1};
  xcb_create_window(canvas.c, XCB_COPY_FROM_PARENT, canvas.window, screen->root,
                    std::int16_t(std::atoi(argv[2])), std::int16_t(std::atoi(argv[3])),
                    std::uint16_t(canvas.width), std::uint16_t(canvas.height), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  canvas.gc = xcb_generate_id(canvas.c);
  xcb_create_gc(canvas.c, canvas.gc, canvas.window, 0, nullptr);
  xcb_map_window(canvas.c, canvas.window);
  FullMotion* full = mode == "full" ? new FullMotion(canvas) : nullptr;
  canvas.sync();

  std::vector<std::pair<std::uint32_t, std::int64_t>> log;
  log.reserve(std::size_t(seconds * fps) + 16);
  std::uint32_t number = 1;
  canvas.stamp(number);
  canvas.sync();
  log.emplace_back(number, nowNs());

  const std::int64_t start = nowNs();
  const std::int64_t end = start + std::int64_t(seconds * 1e9);
  std::int64_t deadline = start;
  long tick = 0;
  while (true) {
    deadline += periodNs;  // absolute deadlines: drawing time does not slow the rate
    if (deadline >= end) break;
    timespec at{time_t(deadline / 1000000000), long(deadline % 1000000000)};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &at, nullptr);
    ++tick;
    if (mode == "static" || (mode == "typing" && tick % (fps / 2) != 0)) continue;
    ++number;
    if (full) {
      full->draw(canvas, number);
    } else if (mode == "box") {
      drawBox(canvas, number);
    } else {
      canvas.stamp(number);
    }
    canvas.sync();  // the picture is on screen once the server answers
    log.emplace_back(number, nowNs());
  }
  if (FILE* out = std::fopen(argv[8], "w")) {
    for (const auto& [n, t] : log) std::fprintf(out, "%u %lld\n", n, static_cast<long long>(t));
    std::fclose(out);
  }
  xcb_disconnect(canvas.c);
  return 0;
}
