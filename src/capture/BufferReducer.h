#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "capture/FramePool.h"
#include "capture/PictureReducer.h"

namespace orlet {

// Keeps one display's picture reduced to the size it is shown at, from the changed parts of the
// display alone: only what changed is reduced down again, and only the output pixels it affects
// are reduced across. A change whose reduced pixels equal the current picture's publishes
// nothing. Whoever has the display's pixels hands them over: a whole buffer at once (a
// compositor's copy of an output), or piece by piece as they are read (the X server's). Used by
// one capture thread.
class BufferReducer {
 public:
  BufferReducer(int sourceWidth, int sourceHeight, int width, int height);

  enum class Result { ok, unchanged, busy, failed };

  // Reduces down, from the source pixels of `areas` (whole blocks, source coordinates), each
  // through reduceDown(); false when they could not be had.
  using ReadAreas = std::function<bool(const std::vector<PixelRect>& areas)>;

  // The next picture, `changed` (source coordinates) having changed since the last one; the
  // first call reduces all of it whatever `changed` says. A failed read leaves the next call to
  // reduce all of it again.
  Result update(std::vector<PixelRect> changed, const ReadAreas& read, FrameRef& frame);

  // The same from `pixels`: the whole display, 32-bit BGRX rows `stride` bytes apart.
  Result read(const std::uint8_t* pixels, std::size_t stride, std::vector<PixelRect> changed,
              FrameRef& frame);

  // Reduces down `area` (whole blocks), whose top-left pixel is at `pixels`.
  void reduceDown(const std::uint8_t* pixels, std::size_t stride, const PixelRect& area) {
    reducer_.reduceDown(pixels, stride, area, down_);
  }

  const PictureReducer& reducer() const { return reducer_; }

 private:
  PictureReducer reducer_;
  ReducedDown down_;
  FramePool pool_;
  bool primed_ = false;
};

}  // namespace orlet
