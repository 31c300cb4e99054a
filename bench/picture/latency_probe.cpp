// Measures the time from a change on a display to its pixels in a mirror of that display: fills
// a square on the display with a new colour, waits until the server has drawn it, then reads one
// pixel where the mirror shows the square's centre (1-pixel GetImage every 0.5 ms) until it has
// the new colour. Changes come at most 30 times a second, the next one a random 0-33 ms after the
// previous one arrived, so that they fall anywhere in the capture's frame period.
//
//   orlet_latency_probe DISPLAY X Y SIZE MIRROR_X MIRROR_Y COUNT
//   X Y SIZE: the square, root coordinates; MIRROR_X MIRROR_Y: where the mirror shows its centre.
//   Prints "latency_ms p50 P50 p99 P99 lost N" (changes not seen within 1 s are lost).
#include <time.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

std::int64_t nowNs() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return std::int64_t(t.tv_sec) * 1000000000 + t.tv_nsec;
}

void sleepNs(std::int64_t ns) {
  const timespec t{time_t(ns / 1000000000), long(ns % 1000000000)};
  nanosleep(&t, nullptr);
}

std::uint32_t pixelAt(xcb_connection_t* c, xcb_window_t root, int x, int y) {
  xcb_get_image_reply_t* reply =
      xcb_get_image_reply(c,
                          xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, root, std::int16_t(x),
                                        std::int16_t(y), 1, 1, ~0u),
                          nullptr);
  std::uint32_t value = 0;
  if (reply && xcb_get_image_data_length(reply) >= 4) {
    value = *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply));
  }
  std::free(reply);
  return value & 0xFFFFFF;
}

bool close(std::uint32_t a, std::uint32_t b) {
  for (int shift = 0; shift < 24; shift += 8) {
    if (std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)) > 12) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 8) {
    std::fprintf(stderr, "usage: %s DISPLAY X Y SIZE MIRROR_X MIRROR_Y COUNT\n", argv[0]);
    return 2;
  }
  xcb_connection_t* c = xcb_connect(argv[1], nullptr);
  if (xcb_connection_has_error(c)) return 1;
  xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
  const int size = std::atoi(argv[4]);
  const int mirrorX = std::atoi(argv[5]), mirrorY = std::atoi(argv[6]);
  const int count = std::atoi(argv[7]);
  const xcb_window_t window = xcb_generate_id(c);
  const std::uint32_t values[] = {0, 1};
  xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, std::int16_t(std::atoi(argv[2])),
                    std::int16_t(std::atoi(argv[3])), std::uint16_t(size), std::uint16_t(size), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  const xcb_gcontext_t gc = xcb_generate_id(c);
  xcb_create_gc(c, gc, window, 0, nullptr);
  xcb_map_window(c, window);
  sleepNs(1000000000);  // mapped and mirrored

  const std::uint32_t colours[] = {0xF0F0F0, 0x101010, 0xE03020, 0x20C040, 0x3050E0};
  std::mt19937 random(7);
  std::vector<double> latencies;
  int lost = 0;
  for (int i = 0; i < count; ++i) {
    const std::uint32_t colour = colours[std::size_t(i) % std::size(colours)];
    xcb_change_gc(c, gc, XCB_GC_FOREGROUND, &colour);
    const xcb_rectangle_t r{0, 0, std::uint16_t(size), std::uint16_t(size)};
    xcb_poly_fill_rectangle(c, window, gc, 1, &r);
    const std::int64_t start = nowNs();  // the reply below comes once the square is drawn
    std::int64_t seen = 0;
    while (nowNs() - start < 1000000000) {
      if (close(pixelAt(c, screen->root, mirrorX, mirrorY), colour)) {
        seen = nowNs();
        break;
      }
      sleepNs(500000);
    }
    if (seen) {
      latencies.push_back(double(seen - start) / 1e6);
    } else {
      ++lost;
    }
    sleepNs(std::int64_t(random() % 33) * 1000000);
  }
  std::sort(latencies.begin(), latencies.end());
  auto at = [&](double q) {
    return latencies.empty() ? -1.0 : latencies[std::size_t(q * double(latencies.size() - 1))];
  };
  std::printf("latency_ms p50 %.1f p99 %.1f lost %d\n", at(0.5), at(0.99), lost);
  xcb_disconnect(c);
  return 0;
}
