#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "capture/ReductionKernels.h"
#include "foundation/PixelRect.h"
#include "platform/CaptureFrame.h"

namespace orlet {

// A picture reduced down but not yet across: one row per output row, one column per averaged
// source column, four 16-bit channel sums each.
struct ReducedDown {
  int columns = 0;
  int rows = 0;
  std::vector<std::int16_t> sums;
  // Working space, kept from one change to the next so that a frame allocates nothing: the
  // averaged blocks of the area being reduced, and one row of block sums.
  std::vector<std::uint8_t> averaged;
  std::vector<std::uint16_t> rowSums;
  std::vector<std::uint16_t> blockSums;
  std::size_t stride() const { return std::size_t(columns) * 4; }
  const std::int16_t* row(int y) const { return sums.data() + stride() * std::size_t(y); }
  std::int16_t* mutableRow(int y) { return sums.data() + stride() * std::size_t(y); }
};

// Reduces pictures of one size to a smaller one in exact steps. First, for large reductions (a
// card), squares of source pixels are averaged into one ("blocks": 2×2, 4×4, ...), which costs
// one addition per source pixel and never aliases, as long as at least twice the reduction is left
// for the filter. Then a separable Lanczos-3 filter sized to what is left of the reduction weighs
// the averaged pixels, down each column first (where neighbouring channels are weighed alike,
// sixteen at a time), then across: thin lines and small text become the smooth grey they average
// to instead of moiré, and stay sharp.
//
// The picture reduced down is what a caller keeps between frames: a changed area's columns are
// reduced down again (from the pixels the output rows they affect weigh, which readArea() gives),
// then the output pixels they affect are reduced across again. Each output pixel is computed the
// same way whatever area it is reduced with.
class PictureReducer {
 public:
  PictureReducer(int sourceWidth, int sourceHeight, int width, int height);

  int sourceWidth() const { return sourceWidth_; }
  int sourceHeight() const { return sourceHeight_; }
  int width() const { return int(columns_.size()); }
  int height() const { return int(rows_.size()); }

  // The side of the averaged squares, a power of two (1: no averaging).
  int block() const { return block_; }

  // An empty picture reduced down, of the right size.
  ReducedDown reducedDown() const;

  // The source pixels to read when `changed` (source coordinates) changes: its whole blocks,
  // widened down to every pixel the output rows it affects weigh.
  PixelRect readArea(const PixelRect& changed) const;
  // `area` (a readArea()) in bands of whole blocks of at most `rows` rows (or one output row's
  // pixels, if more) that overlap so that each output row's pixels lie in one band.
  std::vector<PixelRect> bands(const PixelRect& area, int rows) const;

  // Reduces down the columns of `area` (whole blocks), whose top-left pixel is at `pixels` and
  // whose rows are `stride` bytes apart, into `down`: the output rows whose pixels all lie in
  // `area`.
  void reduceDown(const std::uint8_t* pixels, std::size_t stride, const PixelRect& area,
                  ReducedDown& down) const;

  // The output pixels that depend on the source pixels of `changed`.
  PixelRect affected(const PixelRect& changed) const;

  // Computes the output pixels of `rect` (output coordinates) from `down` into `out`, opaque.
  void reduce(const ReducedDown& down, Frame& out, const PixelRect& rect) const;

 private:
  using Taps = reduction::Taps;
  static std::vector<Taps> taps(double from, int pixels, int to, int multiple,
                                std::vector<std::int16_t>& weights);
  // The first and one past the last taps that weigh a pixel in [from, to).
  static std::pair<int, int> reach(const std::vector<Taps>& taps, int from, int to);
  // The blocks of `source` (whole blocks, in source coordinates) in averaged coordinates.
  PixelRect averaged(const PixelRect& source) const;
  // The output rows whose pixels all lie in averaged rows [from, to).
  std::pair<int, int> within(int from, int to) const;
  void average(const std::uint8_t* pixels, std::size_t stride, const PixelRect& source,
               ReducedDown& down) const;

  int sourceWidth_;
  int sourceHeight_;
  int block_ = 1;
  int blockShift_ = 0;
  int averagedWidth_;
  int averagedHeight_;
  std::vector<std::int16_t> weights_;
  std::vector<Taps> columns_;
  std::vector<Taps> rows_;
};

// Reduces the whole of `source` into `out` (of the reducer's sizes): for one-off reductions and
// for checking partial ones.
void reduceWhole(const PictureReducer& reducer, const Frame& source, Frame& out);

}  // namespace orlet
