#include "linux/capture/Monitors.h"

#include <xcb/randr.h>

namespace orlet::linux_capture {

bool initRandr(const XcbConnection& connection) {
  if (!connection.hasExtension(&xcb_randr_id)) return false;
  Reply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
      connection.get(), xcb_randr_query_version(connection.get(), 1, 5), nullptr));
  return version && (version->major_version > 1 || version->minor_version >= 5);
}

namespace {

std::vector<Display> wholeScreen(const XcbConnection& connection) {
  const auto& screen = connection.screen();
  Display display;
  display.displayID = screen.root;
  display.width = screen.width_in_pixels;
  display.height = screen.height_in_pixels;
  display.frame = Rect{0, 0, double(display.width), double(display.height)};
  display.isMain = true;
  return {display};
}

}  // namespace

std::optional<std::vector<Display>> queryDisplays(const XcbConnection& connection, bool randr15,
                                                  std::string& error) {
  if (!randr15) return wholeScreen(connection);
  xcb_generic_error_t* rawError = nullptr;
  Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
      connection.get(), xcb_randr_get_monitors(connection.get(), connection.root(), 1), &rawError));
  Reply<xcb_generic_error_t> failure(rawError);
  if (!reply) {
    error = failure ? describe("RandR GetMonitors", *failure) : "RandR GetMonitors failed";
    return std::nullopt;
  }
  std::vector<Display> displays;
  bool anyPrimary = false;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
       xcb_randr_monitor_info_next(&it)) {
    const xcb_randr_monitor_info_t& info = *it.data;
    if (info.nOutput == 0 || info.width == 0 || info.height == 0) continue;
    Display display;
    display.displayID = xcb_randr_monitor_info_outputs(it.data)[0];
    display.width = info.width;
    display.height = info.height;
    display.frame = Rect{double(info.x), double(info.y), double(info.width), double(info.height)};
    display.isMain = info.primary != 0;
    anyPrimary = anyPrimary || display.isMain;
    displays.push_back(display);
  }
  if (!anyPrimary) {
    for (auto& display : displays) {
      if (display.frame.x == 0 && display.frame.y == 0) {
        display.isMain = true;
        break;
      }
    }
  }
  return displays;
}

}  // namespace orlet::linux_capture
