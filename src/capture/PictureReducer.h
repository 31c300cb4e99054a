#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "foundation/PixelRect.h"
#include "platform/CaptureFrame.h"

namespace orlet {

// Reduces pictures of one size to a smaller one in two exact steps. First, for large reductions
// (a card), squares of source pixels are averaged into one ("blocks": 2×2, 4×4, ...), which costs
// one addition per source pixel and never aliases, as long as at least twice the reduction is left
// for the second step. Then a separable Lanczos-3 filter sized to what is left of the reduction
// weighs the averaged pixels: thin lines and small text become the smooth grey they average to
// instead of moiré, and stay sharp.
//
// The averaged picture is what a caller keeps between frames: a change of the source is averaged
// into it (only the blocks it touches), and the output pixels that depend on those blocks are
// computed again. Each output pixel is computed the same way whatever area it is reduced with.
class PictureReducer {
 public:
  PictureReducer(int sourceWidth, int sourceHeight, int width, int height);

  int sourceWidth() const { return sourceWidth_; }
  int sourceHeight() const { return sourceHeight_; }
  int width() const { return int(columns_.size()); }
  int height() const { return int(rows_.size()); }

  // The side of the averaged squares, a power of two (1: no averaging), and the size of the
  // averaged picture.
  int block() const { return block_; }
  int averagedWidth() const { return averagedWidth_; }
  int averagedHeight() const { return averagedHeight_; }

  // `source` (source coordinates) grown to whole blocks, within the source.
  PixelRect wholeBlocks(const PixelRect& source) const;
  // The averaged pixels of the blocks that `source` touches.
  PixelRect averagedArea(const PixelRect& source) const;

  // Averages the source pixels of `source` (whole blocks, as wholeBlocks() gives), whose top-left
  // pixel is at `pixels` and whose rows are `stride` bytes apart, into `averaged`.
  void average(const std::uint8_t* pixels, std::size_t stride, const PixelRect& source,
               Frame& averaged) const;

  // The output pixels that depend on the averaged pixels of `area`.
  PixelRect affected(const PixelRect& area) const;

  // Computes the output pixels of `rect` (output coordinates) from `averaged` into `out`, opaque.
  void reduce(const Frame& averaged, Frame& out, const PixelRect& rect) const;

 private:
  // The averaged pixels one output pixel weighs along one axis, and their weights.
  struct Span {
    int first = 0;
    std::uint32_t weights = 0;  // index of the first weight in `weights_`
    int count = 0;
    int last() const { return first + count - 1; }
  };
  static std::vector<Span> spans(double from, int pixels, int to,
                                 std::vector<std::int16_t>& weights);
  // The first and one past the last span that weigh a pixel in [from, to).
  static std::pair<int, int> reach(const std::vector<Span>& spans, int from, int to);
  void reduceRow(const std::int32_t* line, int from, int y, const PixelRect& rect,
                 Frame& out) const;

  int sourceWidth_;
  int sourceHeight_;
  int block_ = 1;
  int blockShift_ = 0;
  int averagedWidth_;
  int averagedHeight_;
  std::vector<std::int16_t> weights_;
  std::vector<std::int32_t> acrossWeights_;  // weights_, each repeated for the four channels
  std::vector<Span> columns_;
  std::vector<Span> rows_;
};

// Reduces the whole of `source` into `out` (of the reducer's sizes), through a scratch averaged
// picture: for one-off reductions and for checking partial ones.
void reduceWhole(const PictureReducer& reducer, const Frame& source, Frame& out);

}  // namespace orlet
