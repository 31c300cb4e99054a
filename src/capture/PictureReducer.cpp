#include "capture/PictureReducer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace orlet {
namespace {

// Weights along one axis sum to 2^12. Columns summed down keep 8 fractional bits, so the sums
// across stay well inside 32 bits even with the filter's negative lobes.
constexpr int weightBits = 12;
constexpr std::int32_t unit = 1 << weightBits;
constexpr int lineShift = 4;
constexpr int outShift = weightBits + weightBits - lineShift;
constexpr double lobes = 3;
// Sums of a block's pixels stay within 16 bits up to 16×16 blocks.
constexpr int maxBlockShift = 4;
constexpr int channels = int(Frame::bytesPerPixel);

double lanczos(double x) {
  if (x == 0) return 1;
  if (std::abs(x) >= lobes) return 0;
  const double px = std::numbers::pi * x;
  return lobes * std::sin(px) * std::sin(px / lobes) / (px * px);
}

int ceilDiv(int value, int by) {
  return (value + by - 1) / by;
}

// The hot loops are compiled twice: for processors with AVX2, where 8 products are one
// instruction, and for every x86-64. Elsewhere once.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
#define ORLET_WIDE_LOOPS __attribute__((target_clones("avx2", "default")))
#else
#define ORLET_WIDE_LOOPS
#endif

// Adds `rows` rows of `count` bytes, `stride` apart, each multiplied by its weight, to `line`.
// Four rows at a time: `line` is read and written a quarter as often.
ORLET_WIDE_LOOPS void sumDown(const std::uint8_t* pixels, std::size_t stride, int rows,
                              const std::int16_t* weights, int count, std::int32_t* line) {
  for (int i = 0; i < count; ++i) line[i] = 0;
  int k = 0;
  for (; k + 4 <= rows; k += 4) {
    const std::uint8_t* p0 = pixels + stride * std::size_t(k);
    const std::uint8_t* p1 = p0 + stride;
    const std::uint8_t* p2 = p1 + stride;
    const std::uint8_t* p3 = p2 + stride;
    const std::int16_t w0 = weights[k], w1 = weights[k + 1], w2 = weights[k + 2],
                       w3 = weights[k + 3];
    for (int i = 0; i < count; ++i) {
      line[i] += std::int16_t(p0[i]) * w0 + std::int16_t(p1[i]) * w1 + std::int16_t(p2[i]) * w2 +
                 std::int16_t(p3[i]) * w3;
    }
  }
  for (; k < rows; ++k) {
    const std::uint8_t* p = pixels + stride * std::size_t(k);
    const std::int16_t w = weights[k];
    for (int i = 0; i < count; ++i) line[i] += std::int16_t(p[i]) * w;
  }
  constexpr std::int32_t half = 1 << (lineShift - 1);
  for (int i = 0; i < count; ++i) line[i] = (line[i] + half) >> lineShift;
}

// Weighs `count` pixels of `line` (4 channels each) into `sums`, with `weights` repeated for each
// channel: one long product of two arrays, which is vectorised two pixels at a time.
ORLET_WIDE_LOOPS void sumAcross(const std::int32_t* line, const std::int32_t* weights, int count,
                                std::int32_t* sums) {
  constexpr int width = 2 * channels;
  std::int32_t total[width] = {};
  const int n = count * channels;
  int i = 0;
  for (; i + width <= n; i += width) {
    for (int j = 0; j < width; ++j) total[j] += line[i + j] * weights[i + j];
  }
  for (; i < n; ++i) total[i % width] += line[i] * weights[i];
  for (int c = 0; c < channels; ++c) sums[c] = total[c] + total[c + channels];
}

// Adds `rows` rows of `count` bytes, `stride` apart, to `sums`.
ORLET_WIDE_LOOPS void addRows(const std::uint8_t* pixels, std::size_t stride, int rows, int count,
                              std::uint16_t* sums) {
  for (int k = 0; k < rows; ++k, pixels += stride) {
    for (int i = 0; i < count; ++i) sums[i] = std::uint16_t(sums[i] + pixels[i]);
  }
}

// Folds every `block` neighbouring pixels of `sums` (per channel) into one.
template <int block>
void foldColumns(const std::uint16_t* sums, int blocks, std::uint16_t* to) {
  for (int x = 0; x < blocks; ++x, sums += block * channels, to += channels) {
    for (int c = 0; c < channels; ++c) {
      std::uint16_t total = 0;
      for (int j = 0; j < block; ++j) total = std::uint16_t(total + sums[j * channels + c]);
      to[c] = total;
    }
  }
}

void foldColumns(int block, const std::uint16_t* sums, int blocks, std::uint16_t* to) {
  switch (block) {
    case 2:
      return foldColumns<2>(sums, blocks, to);
    case 4:
      return foldColumns<4>(sums, blocks, to);
    case 8:
      return foldColumns<8>(sums, blocks, to);
    case 16:
      return foldColumns<16>(sums, blocks, to);
    default:
      return foldColumns<1>(sums, blocks, to);
  }
}

}  // namespace

PictureReducer::PictureReducer(int sourceWidth, int sourceHeight, int width, int height)
    : sourceWidth_(std::max(sourceWidth, 0)), sourceHeight_(std::max(sourceHeight, 0)) {
  width = std::max(width, 0);
  height = std::max(height, 0);
  // Squares are averaged only while the filter is left at least twice the reduction on both
  // axes: averaging is a box filter, which softens detail the filter alone would keep (small
  // text loses about 6 dB PSNR when the filter is left less).
  while (blockShift_ < maxBlockShift && width > 0 && height > 0 &&
         sourceWidth_ >= 4 * block_ * width && sourceHeight_ >= 4 * block_ * height) {
    ++blockShift_;
    block_ *= 2;
  }
  averagedWidth_ = ceilDiv(sourceWidth_, block_);
  averagedHeight_ = ceilDiv(sourceHeight_, block_);
  columns_ = spans(double(sourceWidth_) / block_, averagedWidth_, width, weights_);
  rows_ = spans(double(sourceHeight_) / block_, averagedHeight_, height, weights_);
  acrossWeights_.reserve(weights_.size() * channels);
  for (const std::int16_t w : weights_) acrossWeights_.insert(acrossWeights_.end(), channels, w);
}

std::vector<PictureReducer::Span> PictureReducer::spans(double from, int pixels, int to,
                                                        std::vector<std::int16_t>& weights) {
  std::vector<Span> result(std::size_t(std::max(to, 0)));
  if (pixels <= 0) return result;
  const double scale = from / to;
  const double stretch = std::max(scale, 1.0);  // an enlargement interpolates, unfiltered
  const double support = lobes * stretch;
  for (int i = 0; i < to; ++i) {
    const double centre = (i + 0.5) * scale;
    const int first = std::clamp(int(std::ceil(centre - support - 0.5)), 0, pixels - 1);
    const int last = std::clamp(int(std::floor(centre + support - 0.5)), first, pixels - 1);
    std::vector<double> raw;
    double total = 0;
    for (int j = first; j <= last; ++j) {
      raw.push_back(lanczos((j + 0.5 - centre) / stretch));
      total += raw.back();
    }
    Span& span = result[std::size_t(i)];
    span.first = first;
    span.count = last - first + 1;
    span.weights = std::uint32_t(weights.size());
    std::int32_t sum = 0;
    std::size_t largest = weights.size();
    for (double w : raw) {
      const auto fixed = std::int32_t(std::lround(w / total * unit));
      if (largest == weights.size() || fixed > weights[largest]) largest = weights.size();
      weights.push_back(std::int16_t(fixed));
      sum += fixed;
    }
    weights[largest] = std::int16_t(weights[largest] + unit -
                                    sum);  // exact sums: a flat area stays exactly its colour
  }
  return result;
}

std::pair<int, int> PictureReducer::reach(const std::vector<Span>& spans, int from, int to) {
  // Spans move forward with their index, both ends.
  const auto begin = std::partition_point(spans.begin(), spans.end(),
                                          [from](const Span& s) { return s.last() < from; });
  const auto end =
      std::partition_point(begin, spans.end(), [to](const Span& s) { return s.first < to; });
  return {int(begin - spans.begin()), int(end - spans.begin())};
}

PixelRect PictureReducer::wholeBlocks(const PixelRect& source) const {
  const PixelRect r = intersection(source, {0, 0, sourceWidth_, sourceHeight_});
  if (r.isEmpty()) return {};
  const int x = r.x / block_ * block_, y = r.y / block_ * block_;
  const int maxX = std::min(ceilDiv(r.maxX(), block_) * block_, sourceWidth_);
  const int maxY = std::min(ceilDiv(r.maxY(), block_) * block_, sourceHeight_);
  return {x, y, maxX - x, maxY - y};
}

PixelRect PictureReducer::averagedArea(const PixelRect& source) const {
  const PixelRect r = wholeBlocks(source);
  if (r.isEmpty()) return {};
  const int x = r.x / block_, y = r.y / block_;
  return {x, y, ceilDiv(r.maxX(), block_) - x, ceilDiv(r.maxY(), block_) - y};
}

PixelRect PictureReducer::affected(const PixelRect& area) const {
  if (area.isEmpty()) return {};
  const auto [x0, x1] = reach(columns_, area.x, area.maxX());
  const auto [y0, y1] = reach(rows_, area.y, area.maxY());
  return intersection({x0, y0, x1 - x0, y1 - y0}, {0, 0, width(), height()});
}

void PictureReducer::average(const std::uint8_t* pixels, std::size_t stride,
                             const PixelRect& source, Frame& averaged) const {
  if (source.isEmpty() || averaged.width() != averagedWidth_ ||
      averaged.height() != averagedHeight_) {
    return;
  }
  const PixelRect to = averagedArea(source);
  if (block_ == 1) {  // nothing to average: the pixels are kept as they are
    const std::size_t bytes = std::size_t(source.width) * Frame::bytesPerPixel;
    for (int y = 0; y < source.height; ++y) {
      std::memcpy(averaged.mutableRow(to.y + y) + std::size_t(to.x) * Frame::bytesPerPixel,
                  pixels + stride * std::size_t(y), bytes);
    }
    return;
  }
  std::vector<std::uint16_t> sums(std::size_t(source.width) * channels);
  std::vector<std::uint16_t> blocks(std::size_t(to.width) * channels);
  const int whole = source.width / block_;  // blocks of full width; the last may be narrower
  for (int by = 0; by < to.height; ++by) {
    const int top = by * block_;
    const int rows = std::min(block_, source.height - top);
    std::fill(sums.begin(), sums.end(), 0);
    addRows(pixels + stride * std::size_t(top), stride, rows, source.width * channels, sums.data());
    foldColumns(block_, sums.data(), whole, blocks.data());
    std::uint8_t* out = averaged.mutableRow(to.y + by) + std::size_t(to.x) * Frame::bytesPerPixel;
    const int shift = 2 * blockShift_;
    const int n = whole * channels;
    if (rows == block_) {
      for (int i = 0; i < n; ++i) {
        out[i] = std::uint8_t((blocks[std::size_t(i)] + (1 << shift >> 1)) >> shift);
      }
    } else {
      const int count = rows * block_;
      for (int i = 0; i < n; ++i)
        out[i] = std::uint8_t((blocks[std::size_t(i)] + count / 2) / count);
    }
    if (whole == to.width) continue;
    const int columns = source.width - whole * block_;  // the narrower block at the right edge
    const int count = rows * columns;
    for (int c = 0; c < channels; ++c) {
      int total = 0;
      for (int j = 0; j < columns; ++j)
        total += sums[std::size_t((whole * block_ + j) * channels + c)];
      out[n + c] = std::uint8_t((total + count / 2) / count);
    }
  }
}

void PictureReducer::reduce(const Frame& averaged, Frame& out, const PixelRect& area) const {
  const PixelRect rect = intersection(area, {0, 0, width(), height()});
  if (rect.isEmpty() || averaged.width() != averagedWidth_ ||
      averaged.height() != averagedHeight_ || out.width() != width() || out.height() != height()) {
    return;
  }
  // The averaged columns the output columns of `rect` weigh.
  const int from = columns_[std::size_t(rect.x)].first;
  const int to = columns_[std::size_t(rect.maxX() - 1)].last() + 1;
  std::vector<std::int32_t> line(std::size_t(to - from) * channels);
  for (int y = rect.y; y < rect.maxY(); ++y) {
    const Span& span = rows_[std::size_t(y)];
    sumDown(averaged.row(span.first) + std::size_t(from) * Frame::bytesPerPixel, averaged.stride(),
            span.count, weights_.data() + span.weights, int(line.size()), line.data());
    reduceRow(line.data(), from, y, rect, out);
  }
}

// Weighs `line`, averaged columns summed down from column `from` on, across into row `y` of
// `rect`.
void PictureReducer::reduceRow(const std::int32_t* line, int from, int y, const PixelRect& rect,
                               Frame& out) const {
  std::uint8_t* to = out.mutableRow(y) + std::size_t(rect.x) * Frame::bytesPerPixel;
  constexpr std::int32_t half = 1 << (outShift - 1);
  const auto channel = [](std::int32_t sum) {
    return std::uint8_t(std::clamp((sum + half) >> outShift, 0, 255));
  };
  for (int x = rect.x; x < rect.maxX(); ++x, to += Frame::bytesPerPixel) {
    const Span& span = columns_[std::size_t(x)];
    std::int32_t sums[channels];
    sumAcross(line + std::size_t(span.first - from) * channels,
              acrossWeights_.data() + std::size_t(span.weights) * channels, span.count, sums);
    for (int c = 0; c < 3; ++c) to[c] = channel(sums[c]);
    to[3] = 0xFF;
  }
}

void reduceWhole(const PictureReducer& reducer, const Frame& source, Frame& out) {
  auto averaged = Frame::allocate(reducer.averagedWidth(), reducer.averagedHeight());
  reducer.average(source.pixels(), source.stride(),
                  {0, 0, reducer.sourceWidth(), reducer.sourceHeight()}, *averaged);
  reducer.reduce(*averaged, out, {0, 0, reducer.width(), reducer.height()});
}

}  // namespace orlet
