#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "foundation/PixelRect.h"
#include "platform/CaptureFrame.h"

namespace orlet {

// Reduces pictures of one size to a smaller one with a separable Lanczos filter sized to the
// reduction: each output pixel weighs the source pixels of two output pixels around it. Unlike
// sampling (or averaging the area under the pixel alone), this turns thin lines and small text
// into the smooth grey they average to instead of moiré, whatever the ratio. Works on any part of
// the output, so a small change is reduced at the cost of its size.
class PictureReducer {
 public:
  PictureReducer(int sourceWidth, int sourceHeight, int width, int height);

  int sourceWidth() const { return sourceWidth_; }
  int sourceHeight() const { return sourceHeight_; }
  int width() const { return int(columns_.size()); }
  int height() const { return int(rows_.size()); }

  // The output pixels that depend on the source pixels of `source`.
  PixelRect affected(const PixelRect& source) const;

  // Computes the output pixels of `rect` (output coordinates) from `source` into `out`, opaque.
  void reduce(const Frame& source, Frame& out, const PixelRect& rect) const;

 private:
  // The source pixels one output pixel weighs along one axis, and their weights.
  struct Span {
    int first = 0;
    std::uint32_t weights = 0;  // index of the first weight in `weights_`
    int count = 0;
    int last() const { return first + count - 1; }
  };
  static std::vector<Span> spans(int from, int to, std::vector<std::int32_t>& weights);
  // The first and one past the last span that weigh a source pixel in [from, to).
  static std::pair<int, int> reach(const std::vector<Span>& spans, int from, int to);
  void reduceRow(const Frame& source, int y, int x0, int x1, std::int32_t* sums) const;

  int sourceWidth_;
  int sourceHeight_;
  std::vector<std::int32_t> weights_;
  std::vector<Span> columns_;
  std::vector<Span> rows_;
  int maxRowTaps_ = 1;
};

}  // namespace orlet
