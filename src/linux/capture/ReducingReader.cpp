#include "linux/capture/ReducingReader.h"

#include <algorithm>

#include "capture/PixelRect.h"
#include "linux/capture/BatchReader.h"
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
      down_(reducer_.reducedDown()),
      pool_(width, height, poolCapacity, &Frame::allocate) {}

ReadResult ReducingReader::read(std::vector<PixelRect> changed, FrameRef& frame,
                                std::string& error) {
  if (!primed_) changed = {{0, 0, area_.width, area_.height}};
  std::vector<PixelRect> areas, affected;
  for (const auto& r : changed) {
    areas.push_back(reducer_.readArea(r));
    affected.push_back(reducer_.affected(r));
  }
  mergeOverlapping(areas);
  // Neighbouring changes overlap once widened by the filter: merged, no pixel is reduced twice.
  mergeOverlapping(affected);
  std::shared_ptr<Frame> target = pool_.acquire(affected);
  if (!target) return ReadResult::busy;
  if (!readAreas(areas, error)) {
    pool_.discard(target);
    primed_ = false;  // partly reduced: all of it is read again
    return ReadResult::failed;
  }
  primed_ = true;
  for (const auto& a : affected) reducer_.reduce(down_, *target, a);
  if (!pool_.commit(target, affected)) return ReadResult::unchanged;
  target->setChanges(pool_.version(), std::move(affected));
  frame = std::move(target);
  return ReadResult::ok;
}

// Bands of `areas` that each fit the read budget and hold the whole of the output rows they
// reduce (neighbouring bands share some rows).
std::vector<PixelRect> ReducingReader::pieces(const std::vector<PixelRect>& areas) const {
  std::vector<PixelRect> result;
  for (const auto& r : areas) {
    const std::size_t rowBytes = std::size_t(r.width) * Frame::bytesPerPixel;
    for (const auto& band : reducer_.bands(r, int(readBudget / rowBytes))) result.push_back(band);
  }
  return result;
}

bool ReducingReader::readAreas(const std::vector<PixelRect>& areas, std::string& error) {
  const std::size_t budget = scratch_ ? scratch_->size() : readBudget;
  const auto use = [this](const PixelRect& piece, std::uint8_t* pixels) {
    reduceDown(piece, pixels);
  };
  std::vector<PixelRect> batch;
  std::size_t batchBytes = 0;
  auto flush = [&] {
    const bool ok = readBatch(connection_, scratch_, area_, batch, use, error);
    batch.clear();
    batchBytes = 0;
    return ok;
  };
  for (const auto& piece : pieces(areas)) {
    if (batchBytes + bytes(piece) > budget && !flush()) return false;
    batch.push_back(piece);
    batchBytes += bytes(piece);
  }
  return flush();
}

void ReducingReader::reduceDown(const PixelRect& piece, std::uint8_t* pixels) {
  if (tenBitChannels_) {
    const std::size_t rowBytes = std::size_t(piece.width) * Frame::bytesPerPixel;
    for (int y = 0; y < piece.height; ++y) {
      std::uint8_t* row = pixels + rowBytes * std::size_t(y);
      narrowTenBitRow(row, row, piece.width);
    }
  }
  reducer_.reduceDown(pixels, std::size_t(piece.width) * Frame::bytesPerPixel, piece, down_);
}

}  // namespace orlet::linux_capture
