#pragma once

#include <cstddef>
#include <cstdint>

namespace orlet::reduction {

// The pixels one output pixel weighs along one axis: `count` of them from `first` on, with the
// weights from index `weights` on. Weights along one axis sum to 2^weightBits.
struct Taps {
  int first = 0;
  std::uint32_t weights = 0;
  int count = 0;
  int last() const { return first + count - 1; }
};

constexpr int weightBits = 12;
// Fractional bits of the sums down: the filter's overshoot stays within 16 bits.
constexpr int downBits = 6;

// Weighs `taps` rows of `values` bytes (BGRX channels), `stride` bytes apart from `top` on, down
// into `values` 16-bit sums with downBits fractional bits at `out`.
void weighDown(const std::uint8_t* top, std::size_t stride, const std::int16_t* weights, int taps,
               int values, std::int16_t* out);

// Weighs `rows` rows of sums down (four channels a pixel), `stride` values apart, across: for
// each of `columns`, its taps of the row (pixel `origin` of the row is at `row`) into one opaque
// BGRX pixel, rows of pixels `outStride` bytes apart from `out` on.
void weighAcross(const std::int16_t* row, std::size_t stride, int rows, int origin,
                 const Taps* columns, int count, const std::int16_t* weights, std::uint8_t* out,
                 std::size_t outStride);

}  // namespace orlet::reduction
