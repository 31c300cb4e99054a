#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "foundation/PixelRect.h"

namespace orlet {

// One picture of a display: `height` rows of `width` pixels, `stride` bytes apart, 4 bytes per
// pixel in B, G, R, X order (the X server's 32-bit ZPixmap on a little-endian machine; Qt's
// Format_RGB32). The fourth byte is padding and may hold anything: treat every pixel as opaque.
//
// The producer fills the pixels once through a non-const Frame and then hands the frame out as
// shared_ptr<const Frame>; readers share it by reference and never copy it.
class Frame {
 public:
  static constexpr std::size_t bytesPerPixel = 4;

  // Wraps `pixels`, kept alive by `storage` (a heap block, a shared-memory mapping, ...).
  Frame(int width, int height, std::size_t stride, std::shared_ptr<void> storage,
        std::uint8_t* pixels)
      : width_(width),
        height_(height),
        stride_(stride),
        storage_(std::move(storage)),
        pixels_(pixels) {}

  // A zero-filled picture on the heap with tightly packed rows.
  static std::shared_ptr<Frame> allocate(int width, int height) {
    const std::size_t stride = static_cast<std::size_t>(width) * bytesPerPixel;
    const std::size_t size = stride * static_cast<std::size_t>(height);
    std::shared_ptr<std::uint8_t[]> block(new std::uint8_t[size > 0 ? size : 1]());
    auto* pixels = block.get();
    return std::make_shared<Frame>(width, height, stride, std::move(block), pixels);
  }

  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  int width() const { return width_; }
  int height() const { return height_; }
  std::size_t stride() const { return stride_; }
  std::size_t byteCount() const { return stride_ * static_cast<std::size_t>(height_); }

  const std::uint8_t* pixels() const { return pixels_; }
  const std::uint8_t* row(int y) const { return pixels_ + stride_ * static_cast<std::size_t>(y); }
  std::uint8_t* mutablePixels() { return pixels_; }
  std::uint8_t* mutableRow(int y) { return pixels_ + stride_ * static_cast<std::size_t>(y); }

  // Which picture of its stream this is (counting from 1; 0: unknown) and the rectangles in which
  // it differs from picture `sequence() - 1`: a reader that showed that one redraws only those.
  std::uint64_t sequence() const { return sequence_; }
  const std::vector<PixelRect>& changed() const { return changed_; }
  void setChanges(std::uint64_t sequence, std::vector<PixelRect> changed) {
    sequence_ = sequence;
    changed_ = std::move(changed);
  }

  // The pixel at (x, y) as 0xXXRRGGBB.
  std::uint32_t pixel(int x, int y) const {
    std::uint32_t value;
    std::memcpy(&value, row(y) + static_cast<std::size_t>(x) * bytesPerPixel, sizeof value);
    return value;
  }

 private:
  int width_;
  int height_;
  std::size_t stride_;
  std::shared_ptr<void> storage_;
  std::uint8_t* pixels_;
  std::uint64_t sequence_ = 0;
  std::vector<PixelRect> changed_;
};

using FrameRef = std::shared_ptr<const Frame>;

}  // namespace orlet
