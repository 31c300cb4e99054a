#include "linux/capture/BatchReader.h"

namespace orlet::linux_capture {
namespace {

std::size_t bytes(const PixelRect& r) {
  return std::size_t(r.area()) * 4;
}

bool readShared(const XcbConnection& connection, SharedMemory& scratch, const PixelRect& area,
                const std::vector<PixelRect>& rects, const PixelsRead& use, std::string& error) {
  std::vector<xcb_shm_get_image_cookie_t> cookies;
  std::uint32_t offset = 0;
  for (const auto& r : rects) {
    cookies.push_back(xcb_shm_get_image(connection.get(), connection.root(),
                                        std::int16_t(area.x + r.x), std::int16_t(area.y + r.y),
                                        std::uint16_t(r.width), std::uint16_t(r.height), ~0u,
                                        XCB_IMAGE_FORMAT_Z_PIXMAP, scratch.segment(), offset));
    offset += std::uint32_t(bytes(r));
  }
  bool ok = true;
  for (auto& cookie : cookies) {
    xcb_generic_error_t* rawError = nullptr;
    Reply<xcb_shm_get_image_reply_t> reply(
        xcb_shm_get_image_reply(connection.get(), cookie, &rawError));
    Reply<xcb_generic_error_t> failure(rawError);
    if (!reply && ok) {
      error = failure ? describe("MIT-SHM GetImage", *failure) : "MIT-SHM GetImage failed";
      ok = false;
    }
  }
  if (!ok) return false;
  offset = 0;
  for (const auto& r : rects) {
    use(r, scratch.data() + offset);
    offset += std::uint32_t(bytes(r));
  }
  return true;
}

bool readPlain(const XcbConnection& connection, const PixelRect& area,
               const std::vector<PixelRect>& rects, const PixelsRead& use, std::string& error) {
  std::vector<xcb_get_image_cookie_t> cookies;
  for (const auto& r : rects) {
    cookies.push_back(xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(),
                                    std::int16_t(area.x + r.x), std::int16_t(area.y + r.y),
                                    std::uint16_t(r.width), std::uint16_t(r.height), ~0u));
  }
  bool ok = true;
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    xcb_generic_error_t* rawError = nullptr;
    Reply<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(connection.get(), cookies[i], &rawError));
    Reply<xcb_generic_error_t> failure(rawError);
    if (reply && std::size_t(xcb_get_image_data_length(reply.get())) >= bytes(rects[i])) {
      if (ok) use(rects[i], xcb_get_image_data(reply.get()));
    } else if (ok) {
      error = failure ? describe("GetImage", *failure) : "GetImage returned too little";
      ok = false;
    }
  }
  return ok;
}

}  // namespace

bool readBatch(const XcbConnection& connection, SharedMemory* scratch, const PixelRect& area,
               const std::vector<PixelRect>& rects, const PixelsRead& use, std::string& error) {
  if (rects.empty()) return true;
  return scratch ? readShared(connection, *scratch, area, rects, use, error)
                 : readPlain(connection, area, rects, use, error);
}

}  // namespace orlet::linux_capture
