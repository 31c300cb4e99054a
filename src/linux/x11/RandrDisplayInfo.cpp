#include "linux/x11/RandrDisplayInfo.h"

#include "linux/x11/DisplayDescriptors.h"
#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

// Generous bound for a property read, in 32-bit units: an ICC profile with large tables.
constexpr std::uint32_t kMaxPropertyLongs = 1u << 22;

xcb_screen_t* screenOf(xcb_connection_t* connection, int screenNumber) {
  auto it = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < screenNumber && it.rem > 0; ++i) xcb_screen_next(&it);
  return it.rem > 0 ? it.data : nullptr;
}

std::optional<xcb_visualtype_t> visualOf(const xcb_screen_t& screen, xcb_visualid_t id,
                                         int& depth) {
  for (auto d = xcb_screen_allowed_depths_iterator(&screen); d.rem > 0; xcb_depth_next(&d)) {
    for (auto v = xcb_depth_visuals_iterator(d.data); v.rem > 0; xcb_visualtype_next(&v)) {
      if (v.data->visual_id != id) continue;
      depth = d.data->depth;
      return *v.data;
    }
  }
  return std::nullopt;
}

}  // namespace

RandrDisplayInfo::RandrDisplayInfo(const XConnection& x)
    : x_(x), connection_(x.get()), screen_(screenOf(x.get(), x.screenNumber())) {}

std::optional<Rect> RandrDisplayInfo::activeMonitorGeometry(xcb_randr_output_t output) const {
  if (!screen_) return std::nullopt;
  const auto monitors = waitReply<xcb_randr_get_monitors_reply_t>(
      connection_, xcb_randr_get_monitors_reply,
      xcb_randr_get_monitors(connection_, screen_->root, 1));
  if (!monitors) return std::nullopt;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem > 0;
       xcb_randr_monitor_info_next(&it)) {
    const xcb_randr_output_t* outputs = xcb_randr_monitor_info_outputs(it.data);
    const int count = xcb_randr_monitor_info_outputs_length(it.data);
    for (int i = 0; i < count; ++i) {
      if (outputs[i] != output) continue;
      return Rect{double(it.data->x), double(it.data->y), double(it.data->width),
                  double(it.data->height)};
    }
  }
  return std::nullopt;
}

std::vector<std::uint8_t> RandrDisplayInfo::outputProperty(xcb_randr_output_t output,
                                                           const char* name) const {
  const xcb_atom_t atom = x_.atom(name);
  if (atom == XCB_ATOM_NONE) return {};
  const auto property = waitReply<xcb_randr_get_output_property_reply_t>(
      connection_, xcb_randr_get_output_property_reply,
      xcb_randr_get_output_property(connection_, output, atom, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                    kMaxPropertyLongs, 0, 0));
  if (!property || property->format == 0) return {};
  const std::uint8_t* data = xcb_randr_get_output_property_data(property.get());
  const std::size_t size = std::size_t{property->num_items} * (property->format / 8);
  return {data, data + size};
}

int RandrDisplayInfo::currentRefreshRate(xcb_randr_crtc_t crtc) const {
  if (crtc == XCB_NONE || !screen_) return 0;
  const auto crtcCookie = xcb_randr_get_crtc_info(connection_, crtc, XCB_CURRENT_TIME);
  const auto resourcesCookie = xcb_randr_get_screen_resources_current(connection_, screen_->root);
  const auto crtcInfo = waitReply<xcb_randr_get_crtc_info_reply_t>(
      connection_, xcb_randr_get_crtc_info_reply, crtcCookie);
  const auto resources = waitReply<xcb_randr_get_screen_resources_current_reply_t>(
      connection_, xcb_randr_get_screen_resources_current_reply, resourcesCookie);
  if (!crtcInfo || !resources || crtcInfo->mode == XCB_NONE) return 0;
  const xcb_randr_mode_info_t* modes =
      xcb_randr_get_screen_resources_current_modes(resources.get());
  const int count = xcb_randr_get_screen_resources_current_modes_length(resources.get());
  for (int i = 0; i < count; ++i) {
    const auto& mode = modes[i];
    if (mode.id != crtcInfo->mode) continue;
    return modeRefreshRate(mode.dot_clock, mode.htotal, mode.vtotal,
                           (mode.mode_flags & XCB_RANDR_MODE_FLAG_INTERLACE) != 0,
                           (mode.mode_flags & XCB_RANDR_MODE_FLAG_DOUBLE_SCAN) != 0);
  }
  return 0;
}

bool RandrDisplayInfo::hasCurrentMode(xcb_randr_output_t output) const {
  const auto info = waitReply<xcb_randr_get_output_info_reply_t>(
      connection_, xcb_randr_get_output_info_reply,
      xcb_randr_get_output_info(connection_, output, XCB_CURRENT_TIME));
  if (!info || info->crtc == XCB_NONE) return false;
  const auto crtc = waitReply<xcb_randr_get_crtc_info_reply_t>(
      connection_, xcb_randr_get_crtc_info_reply,
      xcb_randr_get_crtc_info(connection_, info->crtc, XCB_CURRENT_TIME));
  return crtc && crtc->mode != XCB_NONE;
}

Size RandrDisplayInfo::physicalSizeMillimeters(std::uint32_t displayId) const {
  const auto info = waitReply<xcb_randr_get_output_info_reply_t>(
      connection_, xcb_randr_get_output_info_reply,
      xcb_randr_get_output_info(connection_, displayId, XCB_CURRENT_TIME));
  if (!info) return {};
  return {double(info->mm_width), double(info->mm_height)};
}

std::optional<ScreenDescription> RandrDisplayInfo::screen(std::uint32_t displayId) const {
  if (!activeMonitorGeometry(displayId)) return std::nullopt;
  const auto info = waitReply<xcb_randr_get_output_info_reply_t>(
      connection_, xcb_randr_get_output_info_reply,
      xcb_randr_get_output_info(connection_, displayId, XCB_CURRENT_TIME));
  if (!info) return std::nullopt;
  ScreenDescription screen;
  const auto edid = outputProperty(displayId, "EDID");
  if (auto name = edidMonitorName(edid)) {
    screen.localizedName = std::move(*name);
  } else {
    const auto* connector =
        reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
    screen.localizedName.assign(connector, xcb_randr_get_output_info_name_length(info.get()));
  }
  screen.maximumFramesPerSecond = currentRefreshRate(info->crtc);
  screen.colorSpaceName = iccProfileDescription(outputProperty(displayId, "_ICC_PROFILE"));
  return screen;
}

std::optional<std::string> RandrDisplayInfo::pixelEncoding(std::uint32_t displayId) const {
  if (!screen_ || !hasCurrentMode(displayId)) return std::nullopt;
  int depth = screen_->root_depth;
  const auto visual = visualOf(*screen_, screen_->root_visual, depth);
  if (!visual) return std::nullopt;
  return pixelEncodingText(visual->red_mask, visual->green_mask, visual->blue_mask, depth);
}

Rect RandrDisplayInfo::bounds(std::uint32_t displayId) const {
  return activeMonitorGeometry(displayId).value_or(Rect{});
}

}  // namespace orlet::x11
