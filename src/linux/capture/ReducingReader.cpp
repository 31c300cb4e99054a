#include "linux/capture/ReducingReader.h"

#include <algorithm>

#include "capture/PixelRect.h"
#include "linux/capture/TenBitPixels.h"

namespace orlet::linux_capture {
namespace {

// Pictures per display: one being shown, one travelling to the main thread, one being filled.
constexpr std::size_t poolCapacity = 3;

std::size_t bytes(const PixelRect& r) {
  return std::size_t(r.area()) * Frame::bytesPerPixel;
}

}  // namespace

ReducingReader::ReducingReader(const XcbConnection& connection, SharedMemory* scratch,
                               const PixelRect& area, int width, int height, bool tenBitChannels)
    : connection_(connection),
      scratch_(scratch),
      tenBitChannels_(tenBitChannels),
      area_(area),
      reducer_(area.width, area.height, width, height),
      averaged_(Frame::allocate(reducer_.averagedWidth(), reducer_.averagedHeight())),
      pool_(width, height, poolCapacity, &Frame::allocate) {}

ReadResult ReducingReader::read(std::vector<PixelRect> changed, FrameRef& frame,
                                std::string& error) {
  if (!primed_) changed = {{0, 0, area_.width, area_.height}};
  std::vector<PixelRect> blocks, affected;
  for (const auto& r : changed) blocks.push_back(reducer_.wholeBlocks(r));
  mergeOverlapping(blocks);
  for (const auto& b : blocks) affected.push_back(reducer_.affected(reducer_.averagedArea(b)));
  // Neighbouring changes overlap once widened by the filter: merged, no pixel is reduced twice.
  mergeOverlapping(affected);
  std::shared_ptr<Frame> target = pool_.acquire(affected);
  if (!target) return ReadResult::busy;
  if (!readBlocks(blocks, error)) {
    pool_.discard(target);
    primed_ = false;  // partly averaged: all of it is read again
    return ReadResult::failed;
  }
  primed_ = true;
  for (const auto& a : affected) reducer_.reduce(*averaged_, *target, a);
  if (!pool_.commit(target, affected)) return ReadResult::unchanged;
  target->setChanges(pool_.version(), std::move(affected));
  frame = std::move(target);
  return ReadResult::ok;
}

// Whole-block bands of `blocks` that each fit the read budget.
std::vector<PixelRect> ReducingReader::pieces(const std::vector<PixelRect>& blocks) const {
  std::vector<PixelRect> result;
  const int block = reducer_.block();
  for (const auto& r : blocks) {
    const std::size_t rowBytes = std::size_t(r.width) * Frame::bytesPerPixel;
    const int rows = std::max(block, int(readBudget / rowBytes) / block * block);
    for (int y = r.y; y < r.maxY(); y += rows) {
      result.push_back({r.x, y, r.width, std::min(rows, r.maxY() - y)});
    }
  }
  return result;
}

bool ReducingReader::readBlocks(const std::vector<PixelRect>& blocks, std::string& error) {
  const std::size_t budget = scratch_ ? scratch_->size() : readBudget;
  std::vector<PixelRect> batch;
  std::size_t batchBytes = 0;
  auto flush = [&] {
    const bool ok =
        batch.empty() || (scratch_ ? readShared(batch, error) : readPlain(batch, error));
    batch.clear();
    batchBytes = 0;
    return ok;
  };
  for (const auto& piece : pieces(blocks)) {
    if (batchBytes + bytes(piece) > budget && !flush()) return false;
    batch.push_back(piece);
    batchBytes += bytes(piece);
  }
  return flush();
}

bool ReducingReader::readShared(const std::vector<PixelRect>& batch, std::string& error) {
  // All requests go out before the first reply is awaited: one round trip for the batch.
  std::vector<xcb_shm_get_image_cookie_t> cookies;
  std::uint32_t offset = 0;
  for (const auto& r : batch) {
    cookies.push_back(xcb_shm_get_image(connection_.get(), connection_.root(),
                                        std::int16_t(area_.x + r.x), std::int16_t(area_.y + r.y),
                                        std::uint16_t(r.width), std::uint16_t(r.height), ~0u,
                                        XCB_IMAGE_FORMAT_Z_PIXMAP, scratch_->segment(), offset));
    offset += std::uint32_t(bytes(r));
  }
  bool ok = true;
  for (auto& cookie : cookies) {  // collect every reply, even after a failure
    xcb_generic_error_t* rawError = nullptr;
    Reply<xcb_shm_get_image_reply_t> reply(
        xcb_shm_get_image_reply(connection_.get(), cookie, &rawError));
    Reply<xcb_generic_error_t> failure(rawError);
    if (!reply && ok) {
      error = failure ? describe("MIT-SHM GetImage", *failure) : "MIT-SHM GetImage failed";
      ok = false;
    }
  }
  if (!ok) return false;
  offset = 0;
  for (const auto& r : batch) {
    average(r, scratch_->data() + offset);
    offset += std::uint32_t(bytes(r));
  }
  return true;
}

bool ReducingReader::readPlain(const std::vector<PixelRect>& batch, std::string& error) {
  std::vector<xcb_get_image_cookie_t> cookies;
  for (const auto& r : batch) {
    cookies.push_back(xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                    connection_.root(), std::int16_t(area_.x + r.x),
                                    std::int16_t(area_.y + r.y), std::uint16_t(r.width),
                                    std::uint16_t(r.height), ~0u));
  }
  bool ok = true;
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    xcb_generic_error_t* rawError = nullptr;
    Reply<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(connection_.get(), cookies[i], &rawError));
    Reply<xcb_generic_error_t> failure(rawError);
    if (reply && std::size_t(xcb_get_image_data_length(reply.get())) >= bytes(batch[i])) {
      if (ok) average(batch[i], xcb_get_image_data(reply.get()));
    } else if (ok) {
      error = failure ? describe("GetImage", *failure) : "GetImage returned too little";
      ok = false;
    }
  }
  return ok;
}

void ReducingReader::average(const PixelRect& piece, std::uint8_t* pixels) {
  if (tenBitChannels_) {
    const std::size_t rowBytes = std::size_t(piece.width) * Frame::bytesPerPixel;
    for (int y = 0; y < piece.height; ++y) {
      std::uint8_t* row = pixels + rowBytes * std::size_t(y);
      narrowTenBitRow(row, row, piece.width);
    }
  }
  reducer_.average(pixels, std::size_t(piece.width) * Frame::bytesPerPixel, piece, *averaged_);
}

}  // namespace orlet::linux_capture
