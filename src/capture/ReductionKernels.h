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

// The instruction sets the weighing can use, narrowest first. Every level gives the same results
// as the plain one; the widest the processor has is used unless setLevel() picks another.
enum class Level {
  plain,   // every processor
  avx2,    // AVX2
  avx512,  // AVX-512 F, BW, VL, VNNI and VBMI (Ice Lake, Zen 4 and later)
};

// Whether this processor and build can weigh at `level`.
bool available(Level level);
// Weighs at `level` from now on, or at the widest available below it; returns the level used
// before. For tests and benchmarks that compare levels: not meant to change while weighing.
Level setLevel(Level level);

constexpr int weightBits = 12;
// Fractional bits of the sums down: the filter's overshoot stays within 16 bits.
constexpr int downBits = 6;

// Weighs rows of `values` bytes (BGRX channels, from a pixel's first on), `stride` bytes apart
// from `top` on (row `origin` of the picture), down: for each of `count` output rows, its taps of
// them into `values` 16-bit sums with downBits fractional bits, rows `outStride` sums apart from
// `out` on. The padding channel X is not weighed: its sums are 0.
void weighDown(const std::uint8_t* top, std::size_t stride, int origin, const Taps* rows, int count,
               const std::int16_t* weights, int values, std::int16_t* out, std::size_t outStride);

// Weighs `rows` rows of sums down (four channels a pixel), `stride` values apart, across: for
// each of `columns`, its taps of the row (pixel `origin` of the row is at `row`) into one opaque
// BGRX pixel, rows of pixels `outStride` bytes apart from `out` on.
void weighAcross(const std::int16_t* row, std::size_t stride, int rows, int origin,
                 const Taps* columns, int count, const std::int16_t* weights, std::uint8_t* out,
                 std::size_t outStride);

}  // namespace orlet::reduction
