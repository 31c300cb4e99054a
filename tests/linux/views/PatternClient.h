#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace orlet::test {

// A separate X client that paints known colours on the screen, as another application would,
// and reads the screen back as the user would see it.
class PatternClient {
 public:
  // `display`: as for xcb_connect, nullptr meaning $DISPLAY.
  explicit PatternClient(const char* display = nullptr)
      : connection_(xcb_connect(display, nullptr)) {
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  }
  ~PatternClient() {
    for (const xcb_window_t w : windows_) xcb_destroy_window(connection_, w);
    sync();
    xcb_disconnect(connection_);
  }
  PatternClient(const PatternClient&) = delete;
  PatternClient& operator=(const PatternClient&) = delete;

  // An unmanaged window at root x, y filled with `rgb`, kept below the windows of the test.
  xcb_window_t window(int x, int y, int width, int height, std::uint32_t rgb) {
    const xcb_window_t id = xcb_generate_id(connection_);
    const std::uint32_t values[] = {rgb, 1};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, id, screen_->root, std::int16_t(x),
                      std::int16_t(y), std::uint16_t(width), std::uint16_t(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(connection_, id);
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(connection_, id, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    windows_.push_back(id);
    sync();
    return id;
  }

  void fill(xcb_window_t window, int x, int y, int width, int height, std::uint32_t rgb) {
    const xcb_gcontext_t gc = xcb_generate_id(connection_);
    xcb_create_gc(connection_, gc, window, XCB_GC_FOREGROUND, &rgb);
    const xcb_rectangle_t rect{std::int16_t(x), std::int16_t(y), std::uint16_t(width),
                               std::uint16_t(height)};
    xcb_poly_fill_rectangle(connection_, window, gc, 1, &rect);
    xcb_free_gc(connection_, gc);
    sync();
  }

  // The screen's pixel at root x, y as 0xRRGGBB.
  std::uint32_t pixel(int x, int y) {
    auto* reply =
        xcb_get_image_reply(connection_,
                            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root,
                                          std::int16_t(x), std::int16_t(y), 1, 1, ~0u),
                            nullptr);
    std::uint32_t value = 0;
    if (reply && xcb_get_image_data_length(reply) >= 4) {
      value = *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply)) & 0xFFFFFF;
    }
    std::free(reply);
    return value;
  }

 private:
  void sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* connection_;
  xcb_screen_t* screen_;
  std::vector<xcb_window_t> windows_;
};

}  // namespace orlet::test
