#include "linux/capture/RootFormat.h"

namespace orlet::linux_capture {
namespace {

// The root visual has ten bits a channel, red highest and blue lowest.
bool isTenBitRgb(const xcb_screen_t& screen) {
  for (auto d = xcb_screen_allowed_depths_iterator(&screen); d.rem > 0; xcb_depth_next(&d)) {
    for (auto v = xcb_depth_visuals_iterator(d.data); v.rem > 0; xcb_visualtype_next(&v)) {
      if (v.data->visual_id == screen.root_visual) {
        return v.data->red_mask == 0x3FF00000 && v.data->green_mask == 0xFFC00 &&
               v.data->blue_mask == 0x3FF;
      }
    }
  }
  return false;
}

}  // namespace

std::optional<std::string> unreadableRootFormat(const xcb_setup_t& setup,
                                                const xcb_screen_t& screen) {
  const std::uint8_t depth = screen.root_depth;
  if (setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST ||
      (depth != 24 && depth != 32 && depth != 30)) {
    return "format de la fenêtre racine non pris en charge (profondeur " + std::to_string(depth) +
           ")";
  }
  if (depth == 30 && !isTenBitRgb(screen)) {
    return "disposition 30 bits de la fenêtre racine non prise en charge (autre que "
           "x2r10g10b10)";
  }
  for (auto it = xcb_setup_pixmap_formats_iterator(&setup); it.rem > 0; xcb_format_next(&it)) {
    if (it.data->depth == depth) {
      if (it.data->bits_per_pixel == 32) return std::nullopt;
      break;
    }
  }
  return "the root window is not 32 bits per pixel";
}

}  // namespace orlet::linux_capture
