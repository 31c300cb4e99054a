#include "linux/capture/ReducingReader.h"

#include <algorithm>

#include "capture/PixelRect.h"
#include "linux/capture/BatchReader.h"
#include "linux/capture/TenBitPixels.h"

namespace orlet::linux_capture {
namespace {

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
      reducer_(area.width, area.height, width, height) {}

ReadResult ReducingReader::read(std::vector<PixelRect> changed, FrameRef& frame,
                                std::string& error) {
  return reducer_.update(
      std::move(changed),
      [this, &error](const std::vector<PixelRect>& areas) { return readAreas(areas, error); },
      frame);
}

// Bands of `areas` that each fit the read budget and hold the whole of the output rows they
// reduce (neighbouring bands share some rows).
std::vector<PixelRect> ReducingReader::pieces(const std::vector<PixelRect>& areas) const {
  std::vector<PixelRect> result;
  for (const auto& r : areas) {
    const std::size_t rowBytes = std::size_t(r.width) * Frame::bytesPerPixel;
    for (const auto& band : reducer_.reducer().bands(r, int(readBudget / rowBytes))) {
      result.push_back(band);
    }
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
  reducer_.reduceDown(pixels, std::size_t(piece.width) * Frame::bytesPerPixel, piece);
}

}  // namespace orlet::linux_capture
