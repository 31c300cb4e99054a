#pragma once

#include <cstdint>
#include <vector>

#include "foundation/PixelRect.h"
#include "platform/CaptureFrame.h"

namespace orlet {

// Reduces pictures of one size to a smaller one by area averaging: each output pixel is the mean
// of the source pixels under it, each weighted by the part of it covered. Unlike sampling, this
// keeps thin lines and small text as the grey they average to instead of moiré, whatever the
// ratio. Works on any part of the output, so a small change is reduced at the cost of its size.
class AreaReducer {
 public:
  AreaReducer(int sourceWidth, int sourceHeight, int width, int height);

  int sourceWidth() const { return sourceWidth_; }
  int sourceHeight() const { return sourceHeight_; }
  int width() const { return int(columns_.size()); }
  int height() const { return int(rows_.size()); }

  // The output pixels that depend on the source pixels of `source`.
  PixelRect affected(const PixelRect& source) const;

  // Computes the output pixels of `rect` (output coordinates) from `source` into `out`, opaque.
  void reduce(const Frame& source, Frame& out, const PixelRect& rect) const;

 private:
  // The source pixels one output pixel averages along one axis, and their weights.
  struct Span {
    int first = 0;
    std::uint32_t weights = 0;  // index of the first weight in `weights_`
    int count = 0;
  };
  static std::vector<Span> spans(int from, int to, std::vector<std::uint32_t>& weights);
  static int firstSpanReaching(const std::vector<Span>& spans, int position);
  void reduceRow(const Frame& source, int y, int x0, int x1, std::uint32_t* sums) const;

  int sourceWidth_;
  int sourceHeight_;
  std::vector<std::uint32_t> weights_;
  std::vector<Span> columns_;
  std::vector<Span> rows_;
};

}  // namespace orlet
