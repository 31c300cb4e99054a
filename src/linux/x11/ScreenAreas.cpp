#include "linux/x11/ScreenAreas.h"

#include <xcb/randr.h>

#include <algorithm>

#include "foundation/PixelRect.h"
#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

// Both in whole pixels, as the server gives them.
Rect overlap(const Rect& a, const Rect& b) {
  const auto pixels = [](const Rect& r) {
    return PixelRect{int(r.x), int(r.y), int(r.width), int(r.height)};
  };
  const PixelRect r = intersection(pixels(a), pixels(b));
  return r.isEmpty() ? Rect{} : Rect{double(r.x), double(r.y), double(r.width), double(r.height)};
}

std::vector<ScreenArea> monitors(const XConnection& x) {
  std::vector<ScreenArea> screens;
  const auto reply = waitReply<xcb_randr_get_monitors_reply_t>(
      x.get(), xcb_randr_get_monitors_reply, xcb_randr_get_monitors(x.get(), x.root(), 1));
  if (!reply) return screens;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
       xcb_randr_monitor_info_next(&it)) {
    const Rect frame{double(it.data->x), double(it.data->y), double(it.data->width),
                     double(it.data->height)};
    if (!frame.isEmpty()) screens.push_back({frame, frame, it.data->primary != 0});
  }
  return screens;
}

ScreenArea wholeScreen(const XConnection& x) {
  const auto geometry = waitReply<xcb_get_geometry_reply_t>(x.get(), xcb_get_geometry_reply,
                                                            xcb_get_geometry(x.get(), x.root()));
  if (!geometry) return {};
  const Rect frame{0, 0, double(geometry->width), double(geometry->height)};
  return {frame, frame, true};
}

// _NET_WORKAREA holds one rectangle per desktop; the current desktop's is the one in force.
std::optional<Rect> workArea(const XConnection& x) {
  auto& ewmh = x.ewmh();
  const auto current = readCardinals(x, x.root(), ewmh._NET_CURRENT_DESKTOP, XCB_ATOM_CARDINAL);
  const auto areas = readCardinals(x, x.root(), ewmh._NET_WORKAREA, XCB_ATOM_CARDINAL);
  const std::size_t desktop = current.empty() ? 0 : current.front();
  if (areas.size() < (desktop + 1) * 4) return std::nullopt;
  const auto* a = &areas[desktop * 4];
  return Rect{double(a[0]), double(a[1]), double(a[2]), double(a[3])};
}

void putMainFirst(std::vector<ScreenArea>& screens) {
  auto main = std::ranges::find_if(screens, &ScreenArea::isMain);
  if (main == screens.end()) {
    main = std::ranges::find_if(screens, [](const ScreenArea& s) {
      return s.frame.origin() == Point{0, 0};
    });
  }
  if (main == screens.end()) main = screens.begin();
  for (auto& s : screens) s.isMain = false;
  main->isMain = true;
  std::rotate(screens.begin(), main, main + 1);
}

}  // namespace

std::vector<ScreenArea> readScreenAreas(const XConnection& x) {
  auto screens = monitors(x);
  if (screens.empty()) {
    const auto whole = wholeScreen(x);
    if (whole.frame.isEmpty()) return {};
    screens.push_back(whole);
  }
  putMainFirst(screens);
  if (const auto area = workArea(x)) {
    for (auto& s : screens) {
      const auto free = overlap(s.frame, *area);
      if (!free.isEmpty()) s.visibleFrame = free;
    }
  }
  return screens;
}

}  // namespace orlet::x11
