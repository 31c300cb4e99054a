#include "capture/ReductionKernels.h"

#include <algorithm>
#include <atomic>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define ORLET_AVX2 1
#if defined(__clang__)
#include <immintrin.h>
#else
// GCC 12 reports the undefined vectors its own AVX-512 intrinsics start from as uninitialised
// (GCC bug 105593, fixed in GCC 12.3).
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#endif
#endif

namespace orlet::reduction {
namespace {

constexpr int downShift = weightBits - downBits;
constexpr int acrossShift = weightBits + downBits;
constexpr int channels = 4;
constexpr int padding = 3;  // the X of BGRX, never weighed

std::int16_t toSum(std::int32_t sum) {
  return std::int16_t(std::clamp((sum + (1 << (downShift - 1))) >> downShift, -32768, 32767));
}

std::uint8_t toChannel(std::int32_t sum) {
  return std::uint8_t(std::clamp((sum + (1 << (acrossShift - 1))) >> acrossShift, 0, 255));
}

// Plain versions, for every processor; the wide ones below give exactly the same results.
void plainDown(const std::uint8_t* top, std::size_t stride, const std::int16_t* weights, int taps,
               int values, std::int16_t* out) {
  for (int i = 0; i < values; ++i) {
    std::int32_t sum = 0;
    if (i % channels != padding) {
      for (int k = 0; k < taps; ++k)
        sum += top[stride * std::size_t(k) + std::size_t(i)] * weights[k];
    }
    out[i] = toSum(sum);
  }
}

void sumTaps(const std::int16_t* p, const std::int16_t* w, int from, int to, std::int32_t* sums) {
  for (int k = from; k < to; ++k) {
    for (int c = 0; c < channels; ++c) sums[c] += p[k * channels + c] * w[k];
  }
}

void plainAcross(const std::int16_t* row, std::size_t stride, int rows, int origin,
                 const Taps* columns, int count, const std::int16_t* weights, std::uint8_t* out,
                 std::size_t outStride) {
  for (; rows > 0; --rows, row += stride, out += outStride) {
    std::uint8_t* to = out;
    for (int x = 0; x < count; ++x, to += channels) {
      const Taps& t = columns[x];
      std::int32_t sums[channels] = {};
      sumTaps(row + std::size_t(t.first - origin) * channels, weights + t.weights, 0, t.count,
              sums);
      for (int c = 0; c < 3; ++c) to[c] = toChannel(sums[c]);
      to[3] = 0xFF;
    }
  }
}

#ifdef ORLET_AVX2
// Two rows' channels, interleaved, each pair multiplied by the rows' weights and added.
__attribute__((target("avx2"))) inline void addPairs(__m256i first, __m256i second, __m256i w,
                                                     __m256i& low, __m256i& high) {
  low = _mm256_add_epi32(low, _mm256_madd_epi16(_mm256_unpacklo_epi16(first, second), w));
  high = _mm256_add_epi32(high, _mm256_madd_epi16(_mm256_unpackhi_epi16(first, second), w));
}

__attribute__((target("avx2"))) inline __m256i sixteen(const std::uint8_t* p) {
  return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}

__attribute__((target("avx2"))) inline void storeSums(__m256i low, __m256i high,
                                                      std::int16_t* out) {
  const __m256i half = _mm256_set1_epi32(1 << (downShift - 1));
  low = _mm256_srai_epi32(_mm256_add_epi32(low, half), downShift);
  high = _mm256_srai_epi32(_mm256_add_epi32(high, half), downShift);
  const __m256i colour = _mm256_set1_epi64x(0xFFFFFFFFFFFF);  // the padding's sums are 0
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out),
                      _mm256_and_si256(_mm256_packs_epi32(low, high), colour));
}

// Thirty-two channels at a time, two rows at a time (one multiply-add for 16 products).
constexpr int widePairs = 64;

// The weights of two rows side by side, as the multiply-adds take them (an odd last row's with
// nothing); returns how many pairs.
int pairWeights(const std::int16_t* weights, int taps, std::int32_t* pairs) {
  const int count = (taps + 1) / 2;
  for (int k = 0; k < count; ++k) {
    const std::int16_t second = 2 * k + 1 < taps ? weights[2 * k + 1] : 0;
    pairs[k] =
        std::int32_t(std::uint16_t(weights[2 * k]) | std::uint32_t(std::uint16_t(second)) << 16);
  }
  return count;
}

__attribute__((target("avx2"))) void wideDown(const std::uint8_t* top, std::size_t stride,
                                              const std::int16_t* weights, int taps, int values,
                                              std::int16_t* out) {
  std::int32_t pairs[widePairs];
  const int count = pairWeights(weights, taps, pairs);
  const int whole = taps / 2;  // pairs of two rows; an odd last row is paired with nothing
  int i = 0;
  for (; i + 16 <= values; i += 16) {
    const bool two = i + 32 <= values;
    __m256i low = _mm256_setzero_si256(), high = low, low2 = low, high2 = low;
    const std::uint8_t* p = top + i;
    for (int k = 0; k < count; ++k, p += 2 * stride) {
      const __m256i w = _mm256_set1_epi32(pairs[k]);
      const bool pair = k < whole;
      addPairs(sixteen(p), pair ? sixteen(p + stride) : _mm256_setzero_si256(), w, low, high);
      if (two) {
        addPairs(sixteen(p + 16), pair ? sixteen(p + stride + 16) : _mm256_setzero_si256(), w, low2,
                 high2);
      }
    }
    storeSums(low, high, out + i);
    if (two) {
      storeSums(low2, high2, out + i + 16);
      i += 16;
    }
  }
  plainDown(top + i, stride, weights, taps, values - i, out + i);
}

// Four taps of a row, each 128-bit half two pixels' channels paired, as the multiply-adds take
// them.
__attribute__((target("avx2"))) inline __m256i fourPaired(const std::int16_t* p) {
  const __m256i pairs = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15,  //
                                         0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
  return _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), pairs);
}

// Four taps of a row multiplied by their weights `w4` (two a 128-bit half), the pairs added (one
// multiply-add for 16 products).
__attribute__((target("avx2"))) inline __m256i fourTaps(const std::int16_t* p, __m256i w4) {
  return _mm256_madd_epi16(fourPaired(p), w4);
}

__attribute__((target("avx2"))) inline __m256i fourWeights(const std::int16_t* w) {
  const __m256i spread = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
  return _mm256_permutevar8x32_epi32(
      _mm256_castsi128_si256(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(w))), spread);
}

// One row, any number of taps.
__attribute__((target("avx2"))) void wideAcrossRow(const std::int16_t* row, int origin,
                                                   const Taps* columns, int count,
                                                   const std::int16_t* weights, std::uint8_t* out) {
  const __m128i half = _mm_set1_epi32(1 << (acrossShift - 1));
  const __m128i opaque = _mm_set1_epi32(std::int32_t(0xFF000000u));
  for (int x = 0; x < count; ++x, out += channels) {
    const Taps& t = columns[x];
    const std::int16_t* p = row + std::size_t(t.first - origin) * channels;
    const std::int16_t* w = weights + t.weights;
    __m256i total = _mm256_setzero_si256();
    int k = 0;
    for (; k + 4 <= t.count; k += 4) {
      total = _mm256_add_epi32(total, fourTaps(p + k * channels, fourWeights(w + k)));
    }
    alignas(16) std::int32_t rest[channels] = {};
    sumTaps(p, w, k, t.count, rest);
    __m128i sum = _mm_add_epi32(_mm256_castsi256_si128(total), _mm256_extracti128_si256(total, 1));
    sum = _mm_add_epi32(sum, _mm_load_si128(reinterpret_cast<const __m128i*>(rest)));
    sum = _mm_srai_epi32(_mm_add_epi32(sum, half), acrossShift);
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(sum, sum), sum);
    const int pixel = _mm_cvtsi128_si32(_mm_or_si128(bytes, opaque));
    __builtin_memcpy(out, &pixel, sizeof pixel);
  }
}

// The four rows' pixels of a column from their sums of four taps, each two halves.
__attribute__((target("avx2"))) inline void storeFour(__m256i t0, __m256i t1, __m256i t2,
                                                      __m256i t3, std::uint8_t* out,
                                                      std::size_t outStride) {
  const __m256i half = _mm256_set1_epi32(1 << (acrossShift - 1));
  const __m256i opaque = _mm256_set1_epi32(std::int32_t(0xFF000000u));
  // Each total's two halves added: rows 0 and 1 in one register, rows 2 and 3 in another.
  __m256i s01 = _mm256_add_epi32(_mm256_permute2x128_si256(t0, t1, 0x20),
                                 _mm256_permute2x128_si256(t0, t1, 0x31));
  __m256i s23 = _mm256_add_epi32(_mm256_permute2x128_si256(t2, t3, 0x20),
                                 _mm256_permute2x128_si256(t2, t3, 0x31));
  s01 = _mm256_srai_epi32(_mm256_add_epi32(s01, half), acrossShift);
  s23 = _mm256_srai_epi32(_mm256_add_epi32(s23, half), acrossShift);
  const __m256i words = _mm256_packs_epi32(s01, s23);  // rows 0, 2 | rows 1, 3
  const __m256i bytes = _mm256_or_si256(_mm256_packus_epi16(words, words), opaque);
  const int pixels[4] = {_mm256_extract_epi32(bytes, 0), _mm256_extract_epi32(bytes, 4),
                         _mm256_extract_epi32(bytes, 1), _mm256_extract_epi32(bytes, 5)};
  for (int r = 0; r < 4; ++r) __builtin_memcpy(out + outStride * r, &pixels[r], 4);
}

// Four rows at once, sharing each column's weights; every column has a multiple of four taps.
__attribute__((target("avx2"))) void wideAcrossFour(const std::int16_t* row, std::size_t stride,
                                                    int origin, const Taps* columns, int count,
                                                    const std::int16_t* weights, std::uint8_t* out,
                                                    std::size_t outStride) {
  for (int x = 0; x < count; ++x, out += channels) {
    const Taps& t = columns[x];
    const std::int16_t* p = row + std::size_t(t.first - origin) * channels;
    const std::int16_t* w = weights + t.weights;
    __m256i t0 = _mm256_setzero_si256(), t1 = t0, t2 = t0, t3 = t0;
    for (int k = 0; k < t.count; k += 4, p += 4 * channels) {
      const __m256i w4 = fourWeights(w + k);
      t0 = _mm256_add_epi32(t0, fourTaps(p, w4));
      t1 = _mm256_add_epi32(t1, fourTaps(p + stride, w4));
      t2 = _mm256_add_epi32(t2, fourTaps(p + 2 * stride, w4));
      t3 = _mm256_add_epi32(t3, fourTaps(p + 3 * stride, w4));
    }
    storeFour(t0, t1, t2, t3, out, outStride);
  }
}

using AcrossFour = void (*)(const std::int16_t* row, std::size_t stride, int origin,
                            const Taps* columns, int count, const std::int16_t* weights,
                            std::uint8_t* out, std::size_t outStride);

// Four rows at a time with `four` where every column has a multiple of four taps, else one.
__attribute__((target("avx2"))) void wideAcross(const std::int16_t* row, std::size_t stride,
                                                int rows, int origin, const Taps* columns,
                                                int count, const std::int16_t* weights,
                                                std::uint8_t* out, std::size_t outStride,
                                                AcrossFour four) {
  const bool fours =
      std::all_of(columns, columns + count, [](const Taps& t) { return t.count % 4 == 0; });
  if (fours) {
    for (; rows >= 4; rows -= 4, row += 4 * stride, out += 4 * outStride) {
      four(row, stride, origin, columns, count, weights, out, outStride);
    }
  }
  for (; rows > 0; --rows, row += stride, out += outStride) {
    wideAcrossRow(row, origin, columns, count, weights, out);
  }
}

// AVX-512 with the 16-bit dot products of VNNI, which multiply, add the pairs and accumulate in
// one instruction, and the byte permutations of VBMI.
#define ORLET_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vnni,avx512vbmi")))

// Adds the products of the pairs of 16-bit values of `a` and `b`, pair by pair, to `sum`. Written
// out because GCC 12 copies the sum to another register and back around each dpwssd it emits,
// which costs the pass down a tenth.
ORLET_AVX512 inline __m512i dot(__m512i sum, __m512i a, __m512i b) {
  asm("vpdpwssd %2, %1, %0" : "+v"(sum) : "v"(a), "v"(b));
  return sum;
}

// A vector loaded into a register: GCC would otherwise load it again into each permutation that
// uses it, which then runs at half the speed on Zen 4.
ORLET_AVX512 inline __m512i load(const std::uint8_t* p, __mmask64 mask) {
  __m512i v = _mm512_maskz_loadu_epi8(mask, p);
  asm("" : "+v"(v));
  return v;
}

// The sums of sixteen pixels' blue, green and red (the padding is not weighed: a quarter less
// work), one pixel a 32-bit lane.
struct Colours {
  __m512i blue, green, red;
};

// Two rows' sixteen pixels, each channel's bytes zero-extended and paired in 32-bit lanes by
// one permutation of both rows (widening and interleaving take three).
ORLET_AVX512 inline Colours pairRows(const std::uint8_t* p, std::size_t stride, bool second,
                                     __mmask64 mask) {
  // Lane j: byte 4j of the first row and of the second (64 on); then the next byte, and so on.
  const __m512i blue = _mm512_setr_epi32(0x400000, 0x440004, 0x480008, 0x4C000C, 0x500010, 0x540014,
                                         0x580018, 0x5C001C, 0x600020, 0x640024, 0x680028, 0x6C002C,
                                         0x700030, 0x740034, 0x780038, 0x7C003C);
  const __m512i green = _mm512_add_epi8(blue, _mm512_set1_epi8(1));
  const __m512i red = _mm512_add_epi8(blue, _mm512_set1_epi8(2));
  const __mmask64 low = 0x5555555555555555;
  const __m512i a = load(p, mask);
  const __m512i b = second ? load(p + stride, mask) : _mm512_setzero_si512();
  return {_mm512_maskz_permutex2var_epi8(low, a, blue, b),
          _mm512_maskz_permutex2var_epi8(low, a, green, b),
          _mm512_maskz_permutex2var_epi8(low, a, red, b)};
}

ORLET_AVX512 inline Colours addPairs(Colours sums, const Colours& pairs, std::int32_t weights) {
  const __m512i w = _mm512_set1_epi32(weights);
  return {dot(sums.blue, pairs.blue, w), dot(sums.green, pairs.green, w),
          dot(sums.red, pairs.red, w)};
}

ORLET_AVX512 inline __m256i words(__m512i sums) {
  return _mm512_cvtsepi32_epi16(_mm512_srai_epi32(sums, downShift));
}

// Sixteen pixels' sums, rounded, as BGRX with a padding of 0.
ORLET_AVX512 inline void storeSums(const Colours& sums, int count, std::int16_t* out) {
  const __m512i blueGreen =
      _mm512_inserti64x4(_mm512_castsi256_si512(words(sums.blue)), words(sums.green), 1);
  const __m512i red = _mm512_castsi256_si512(words(sums.red));
  const __m512i first =
      _mm512_setr_epi32(0x100000, 0x20, 0x110001, 0x21, 0x120002, 0x22, 0x130003, 0x23, 0x140004,
                        0x24, 0x150005, 0x25, 0x160006, 0x26, 0x170007, 0x27);
  const __m512i second = _mm512_add_epi16(first, _mm512_set1_epi16(8));
  const __mmask32 colour = 0x77777777;
  const auto mask = [](int n) { return n >= 32 ? ~__mmask32(0) : (__mmask32(1) << n) - 1; };
  _mm512_mask_storeu_epi16(out, mask(count),
                           _mm512_maskz_permutex2var_epi16(colour, blueGreen, first, red));
  if (count > 32) {
    _mm512_mask_storeu_epi16(out + 32, mask(count - 32),
                             _mm512_maskz_permutex2var_epi16(colour, blueGreen, second, red));
  }
}

// Two output rows at once, from `rows` rows on: a weighs pairs [0, aPairs) of them, b (which
// starts and ends no earlier) pairs [bFrom, bFrom + bPairs), or nothing. The pairs both weigh are
// loaded and paired once for both, which halves the loads and the permutations a multiplication:
// a third less time than one row at a time, whose loads mostly miss the first-level cache.
ORLET_AVX512 void widestDownTwo(const std::uint8_t* top, std::size_t stride, int rows,
                                const std::int32_t* a, int aPairs, const std::int32_t* b, int bFrom,
                                int bPairs, int values, std::int16_t* outA, std::int16_t* outB) {
  // The rounding of the shift down, added up front.
  const __m512i half = _mm512_set1_epi32(1 << (downShift - 1));
  const int both = std::min(aPairs, bFrom + bPairs);
  for (int i = 0; i < values; i += 64) {
    const int left = values - i;
    const __mmask64 mask = left >= 64 ? ~__mmask64(0) : (__mmask64(1) << left) - 1;
    Colours sumsA{half, half, half}, sumsB = sumsA;
    const std::uint8_t* p = top + i;
    const auto pairs = [&](int m) ORLET_AVX512 {
      return pairRows(p + 2 * std::size_t(m) * stride, stride, 2 * m + 1 < rows, mask);
    };
    int m = 0;
    for (; m < std::min(bFrom, aPairs); ++m) sumsA = addPairs(sumsA, pairs(m), a[m]);
    for (; m < both; ++m) {
      const Colours x = pairs(m);
      sumsA = addPairs(sumsA, x, a[m]);
      sumsB = addPairs(sumsB, x, b[m - bFrom]);
    }
    for (m = std::max(m, bFrom); m < bFrom + bPairs; ++m) {
      sumsB = addPairs(sumsB, pairs(m), b[m - bFrom]);
    }
    storeSums(sumsA, left, outA + i);
    if (bPairs > 0) storeSums(sumsB, left, outB + i);
  }
}

// Output rows two at a time where their taps allow, else one.
ORLET_AVX512 void widestDown(const std::uint8_t* top, std::size_t stride, int origin,
                             const Taps* rows, int count, const std::int16_t* weights, int values,
                             std::int16_t* out, std::size_t outStride) {
  std::int32_t a[widePairs], b[widePairs];
  std::int16_t shifted[2 * widePairs];
  for (int y = 0; y < count;) {
    const Taps& t = rows[y];
    const std::uint8_t* first = top + stride * std::size_t(t.first - origin);
    std::int16_t* to = out + outStride * std::size_t(y);
    if (t.count > 2 * widePairs) {
      plainDown(first, stride, weights + t.weights, t.count, values, to);
      ++y;
      continue;
    }
    const int aPairs = pairWeights(weights + t.weights, t.count, a);
    int span = t.count, bFrom = aPairs, bPairs = 0;
    if (y + 1 < count) {
      const Taps& u = rows[y + 1];
      const int shift = u.first - t.first;
      if (shift >= 0 && u.last() >= t.last() && u.last() - t.first < 2 * widePairs) {
        // b's weights from the pair that holds its first row on, after a 0 if that row is odd.
        bFrom = shift / 2;
        shifted[0] = 0;
        std::copy_n(weights + u.weights, u.count, shifted + shift % 2);
        bPairs = pairWeights(shifted, u.count + shift % 2, b);
        span = u.last() - t.first + 1;
      }
    }
    widestDownTwo(first, stride, span, a, aPairs, b, bFrom, bPairs, values, to, to + outStride);
    y += bPairs > 0 ? 2 : 1;
  }
}

// Four rows at once as wideAcrossFour(), each multiply-add and addition fused into one: about a
// tenth faster. (Eight taps to a 512-bit register were slower with the twenty taps a column of
// the mirror had when the filter's last quarter lobe was still weighed, which left a masked half;
// Zen 4 weighs 512 bits in two halves anyway.)
ORLET_AVX512 void widestAcrossFour(const std::int16_t* row, std::size_t stride, int origin,
                                   const Taps* columns, int count, const std::int16_t* weights,
                                   std::uint8_t* out, std::size_t outStride) {
  for (int x = 0; x < count; ++x, out += channels) {
    const Taps& t = columns[x];
    const std::int16_t* p = row + std::size_t(t.first - origin) * channels;
    const std::int16_t* w = weights + t.weights;
    __m256i t0 = _mm256_setzero_si256(), t1 = t0, t2 = t0, t3 = t0;
    for (int k = 0; k < t.count; k += 4, p += 4 * channels) {
      const __m256i w4 = fourWeights(w + k);
      t0 = _mm256_dpwssd_epi32(t0, fourPaired(p), w4);
      t1 = _mm256_dpwssd_epi32(t1, fourPaired(p + stride), w4);
      t2 = _mm256_dpwssd_epi32(t2, fourPaired(p + 2 * stride), w4);
      t3 = _mm256_dpwssd_epi32(t3, fourPaired(p + 3 * stride), w4);
    }
    storeFour(t0, t1, t2, t3, out, outStride);
  }
}

Level widest() {
  static const Level level = [] {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vnni") &&
        __builtin_cpu_supports("avx512vbmi")) {
      return Level::avx512;
    }
    return __builtin_cpu_supports("avx2") ? Level::avx2 : Level::plain;
  }();
  return level;
}
#else
Level widest() {
  return Level::plain;
}
#endif

std::atomic<Level>& current() {
  static std::atomic<Level> level{widest()};
  return level;
}

}  // namespace

bool available(Level level) {
  return level <= widest();
}

Level setLevel(Level level) {
  return current().exchange(std::min(level, widest()));
}

void weighDown(const std::uint8_t* top, std::size_t stride, int origin, const Taps* rows, int count,
               const std::int16_t* weights, int values, std::int16_t* out, std::size_t outStride) {
#ifdef ORLET_AVX2
  const Level level = current().load(std::memory_order_relaxed);
  if (level == Level::avx512) {
    return widestDown(top, stride, origin, rows, count, weights, values, out, outStride);
  }
#endif
  for (int y = 0; y < count; ++y, out += outStride) {
    const Taps& t = rows[y];
    const std::uint8_t* first = top + stride * std::size_t(t.first - origin);
#ifdef ORLET_AVX2
    if (level == Level::avx2 && t.count <= 2 * widePairs) {
      wideDown(first, stride, weights + t.weights, t.count, values, out);
      continue;
    }
#endif
    plainDown(first, stride, weights + t.weights, t.count, values, out);
  }
}

void weighAcross(const std::int16_t* row, std::size_t stride, int rows, int origin,
                 const Taps* columns, int count, const std::int16_t* weights, std::uint8_t* out,
                 std::size_t outStride) {
#ifdef ORLET_AVX2
  switch (current().load(std::memory_order_relaxed)) {
    case Level::avx512:
      return wideAcross(row, stride, rows, origin, columns, count, weights, out, outStride,
                        widestAcrossFour);
    case Level::avx2:
      return wideAcross(row, stride, rows, origin, columns, count, weights, out, outStride,
                        wideAcrossFour);
    case Level::plain:
      break;
  }
#endif
  plainAcross(row, stride, rows, origin, columns, count, weights, out, outStride);
}

}  // namespace orlet::reduction
