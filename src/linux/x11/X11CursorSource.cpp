#include "linux/x11/X11CursorSource.h"

#include <xcb/xfixes.h>

#include <ostream>

#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

// The server must hear the version we speak before any other XFIXES request.
bool initialiseXFixes(xcb_connection_t* c) {
  const auto* extension = xcb_get_extension_data(c, &xcb_xfixes_id);
  if (!extension || !extension->present) return false;
  const auto version = waitReply<xcb_xfixes_query_version_reply_t>(
      c, xcb_xfixes_query_version_reply, xcb_xfixes_query_version(c, 4, 0));
  return version && version->major_version >= 2;
}

CursorImageRef fetchCursor(xcb_connection_t* c) {
  const auto reply = waitReply<xcb_xfixes_get_cursor_image_reply_t>(
      c, xcb_xfixes_get_cursor_image_reply, xcb_xfixes_get_cursor_image(c));
  if (!reply || reply->width == 0 || reply->height == 0) return nullptr;
  const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
  const int length = xcb_xfixes_get_cursor_image_cursor_image_length(reply.get());
  if (length < int(reply->width) * int(reply->height)) return nullptr;
  auto image = std::make_shared<CursorImage>();
  image->width = reply->width;
  image->height = reply->height;
  image->hotSpot = {double(reply->xhot), double(reply->yhot)};
  image->argb.assign(pixels, pixels + std::size_t(reply->width) * reply->height);
  image->serial = reply->cursor_serial;
  return image;
}

}  // namespace

X11CursorSource::X11CursorSource(const XConnection& x, XEventSource& events,
                                 std::ostream& diagnostics)
    : x_(x) {
  auto* c = x_.get();
  if (!initialiseXFixes(c)) {
    diagnostics << "orlet: le serveur X n'a pas l'extension XFIXES : le pointeur n'est pas "
                   "dessiné sur le miroir\n";
    return;
  }
  cursorNotify_ = xcb_get_extension_data(c, &xcb_xfixes_id)->first_event + XCB_XFIXES_CURSOR_NOTIFY;
  x_.check(xcb_xfixes_select_cursor_input_checked(c, x_.root(),
                                                  XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR));
  subscription_ = events.subscribe([this](const xcb_generic_event_t& e) { handle(e); });
}

void X11CursorSource::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != cursorNotify_) return;
  stale_ = true;
  changes_.call();
}

CursorImageRef X11CursorSource::currentCursor() const {
  if (cursorNotify_ == 0) return nullptr;
  if (stale_) {
    cached_ = fetchCursor(x_.get());
    stale_ = false;
  }
  return cached_;
}

}  // namespace orlet::x11
