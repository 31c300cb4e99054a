#include "capture/ReductionKernels.h"

#include <algorithm>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define ORLET_AVX2 1
#include <immintrin.h>
#endif

namespace orlet::reduction {
namespace {

constexpr int downShift = weightBits - downBits;
constexpr int acrossShift = weightBits + downBits;
constexpr int channels = 4;

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
    for (int k = 0; k < taps; ++k)
      sum += top[stride * std::size_t(k) + std::size_t(i)] * weights[k];
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
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_packs_epi32(low, high));
}

// Thirty-two channels at a time, two rows at a time (one multiply-add for 16 products).
constexpr int widePairs = 64;

__attribute__((target("avx2"))) void wideDown(const std::uint8_t* top, std::size_t stride,
                                              const std::int16_t* weights, int taps, int values,
                                              std::int16_t* out) {
  std::int32_t pairs[widePairs];
  const int count = (taps + 1) / 2;
  for (int k = 0; k < count; ++k) {
    const std::int16_t second = 2 * k + 1 < taps ? weights[2 * k + 1] : 0;
    pairs[k] =
        std::int32_t(std::uint16_t(weights[2 * k]) | std::uint32_t(std::uint16_t(second)) << 16);
  }
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

// Four taps of a row: each 128-bit half multiplies two pixels' channels, paired, by their two
// weights `w4` and adds the pairs (one multiply-add for 16 products).
__attribute__((target("avx2"))) inline __m256i fourTaps(const std::int16_t* p, __m256i w4) {
  const __m256i pairs = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15,  //
                                         0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
  const __m256i four = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  return _mm256_madd_epi16(_mm256_shuffle_epi8(four, pairs), w4);
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

// Four rows at once, sharing each column's weights; every column has a multiple of four taps.
__attribute__((target("avx2"))) void wideAcrossFour(const std::int16_t* row, std::size_t stride,
                                                    int origin, const Taps* columns, int count,
                                                    const std::int16_t* weights, std::uint8_t* out,
                                                    std::size_t outStride) {
  const __m256i half = _mm256_set1_epi32(1 << (acrossShift - 1));
  const __m256i opaque = _mm256_set1_epi32(std::int32_t(0xFF000000u));
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
}

__attribute__((target("avx2"))) void wideAcross(const std::int16_t* row, std::size_t stride,
                                                int rows, int origin, const Taps* columns,
                                                int count, const std::int16_t* weights,
                                                std::uint8_t* out, std::size_t outStride) {
  const bool fours =
      std::all_of(columns, columns + count, [](const Taps& t) { return t.count % 4 == 0; });
  if (fours) {
    for (; rows >= 4; rows -= 4, row += 4 * stride, out += 4 * outStride) {
      wideAcrossFour(row, stride, origin, columns, count, weights, out, outStride);
    }
  }
  for (; rows > 0; --rows, row += stride, out += outStride) {
    wideAcrossRow(row, origin, columns, count, weights, out);
  }
}

bool wide() {
  static const bool supported = (__builtin_cpu_init(), __builtin_cpu_supports("avx2"));
  return supported;
}
#else
constexpr bool wide() {
  return false;
}
#endif

}  // namespace

void weighDown(const std::uint8_t* top, std::size_t stride, const std::int16_t* weights, int taps,
               int values, std::int16_t* out) {
#ifdef ORLET_AVX2
  if (wide() && taps <= 2 * widePairs) return wideDown(top, stride, weights, taps, values, out);
#endif
  plainDown(top, stride, weights, taps, values, out);
}

void weighAcross(const std::int16_t* row, std::size_t stride, int rows, int origin,
                 const Taps* columns, int count, const std::int16_t* weights, std::uint8_t* out,
                 std::size_t outStride) {
#ifdef ORLET_AVX2
  if (wide()) return wideAcross(row, stride, rows, origin, columns, count, weights, out, outStride);
#endif
  plainAcross(row, stride, rows, origin, columns, count, weights, out, outStride);
}

}  // namespace orlet::reduction
