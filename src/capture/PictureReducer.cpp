#include "capture/PictureReducer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace orlet {
namespace {

using reduction::weightBits;
constexpr std::int32_t unit = 1 << weightBits;
constexpr double lobes = 3;
// Weights are taken within this many lobes of the centre. The last quarter lobe weighs under 1 %
// and leaves the picture as faithful (the same PSNR to a tenth of a decibel on a test pattern);
// without it the mirror's columns weigh 16 pixels instead of 20 (17, padded to a multiple of
// four) and its rows 15 or 16 instead of 17.
constexpr double lobesTaken = 2.75;
// Sums of a block's pixels stay within 16 bits up to 16×16 blocks.
constexpr int maxBlockShift = 4;
constexpr int channels = int(Frame::bytesPerPixel);
// The wide loops across weigh four pixels at a time: columns get a multiple of four taps.
constexpr int acrossMultiple = 4;

double lanczos(double x) {
  if (x == 0) return 1;
  if (std::abs(x) >= lobesTaken) return 0;
  const double px = std::numbers::pi * x;
  return lobes * std::sin(px) * std::sin(px / lobes) / (px * px);
}

int ceilDiv(int value, int by) {
  return (value + by - 1) / by;
}

// Compiled twice: for processors with AVX2 (32 additions an instruction) and for every x86-64.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
#define ORLET_WIDE_LOOPS __attribute__((target_clones("avx2", "default")))
#else
#define ORLET_WIDE_LOOPS
#endif

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
  columns_ = taps(double(sourceWidth_) / block_, averagedWidth_, width, acrossMultiple, weights_);
  rows_ = taps(double(sourceHeight_) / block_, averagedHeight_, height, 1, weights_);
}

std::vector<PictureReducer::Taps> PictureReducer::taps(double from, int pixels, int to,
                                                       int multiple,
                                                       std::vector<std::int16_t>& weights) {
  std::vector<Taps> result(std::size_t(std::max(to, 0)));
  if (pixels <= 0) return result;
  const double scale = from / to;
  const double stretch = std::max(scale, 1.0);  // an enlargement interpolates, unfiltered
  const double support = lobesTaken * stretch;
  std::vector<double> raw;
  for (int i = 0; i < to; ++i) {
    const double centre = (i + 0.5) * scale;
    int first = std::clamp(int(std::ceil(centre - support - 0.5)), 0, pixels - 1);
    int last = std::clamp(int(std::floor(centre + support - 0.5)), first, pixels - 1);
    // Padded with pixels of no weight to a multiple of taps, where the picture is wide enough.
    const int missing = (multiple - (last - first + 1) % multiple) % multiple;
    const int right = std::min(missing, pixels - 1 - last);
    const int left = std::min(missing - right, first);
    raw.clear();
    double total = 0;
    for (int j = first - left; j <= last + right; ++j) {
      const bool padding = j < first || j > last;
      raw.push_back(padding ? 0.0 : lanczos((j + 0.5 - centre) / stretch));
      total += raw.back();
    }
    first -= left;
    last += right;
    Taps& t = result[std::size_t(i)];
    t.first = first;
    t.count = last - first + 1;
    t.weights = std::uint32_t(weights.size());
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

std::pair<int, int> PictureReducer::reach(const std::vector<Taps>& taps, int from, int to) {
  // Taps move forward with their index, both ends.
  const auto begin = std::partition_point(taps.begin(), taps.end(),
                                          [from](const Taps& t) { return t.last() < from; });
  const auto end =
      std::partition_point(begin, taps.end(), [to](const Taps& t) { return t.first < to; });
  return {int(begin - taps.begin()), int(end - taps.begin())};
}

ReducedDown PictureReducer::reducedDown() const {
  ReducedDown down;
  down.columns = averagedWidth_;
  down.rows = height();
  down.sums.resize(down.stride() * std::size_t(down.rows));
  return down;
}

PixelRect PictureReducer::averaged(const PixelRect& source) const {
  if (source.isEmpty()) return {};
  const int x = source.x / block_, y = source.y / block_;
  return {x, y, ceilDiv(source.maxX(), block_) - x, ceilDiv(source.maxY(), block_) - y};
}

PixelRect PictureReducer::readArea(const PixelRect& changed) const {
  const PixelRect r = intersection(changed, {0, 0, sourceWidth_, sourceHeight_});
  if (r.isEmpty() || rows_.empty()) return {};
  const int x = r.x / block_ * block_;
  const int maxX = std::min(ceilDiv(r.maxX(), block_) * block_, sourceWidth_);
  const int from = r.y / block_, to = ceilDiv(r.maxY(), block_);
  const auto [first, end] = reach(rows_, from, to);
  if (first >= end) return {};
  const int y = std::min(from, rows_[std::size_t(first)].first) * block_;
  const int maxY =
      std::min(std::max(to, rows_[std::size_t(end - 1)].last() + 1) * block_, sourceHeight_);
  return {x, y, maxX - x, maxY - y};
}

std::pair<int, int> PictureReducer::within(int from, int to) const {
  const auto begin = std::partition_point(rows_.begin(), rows_.end(),
                                          [from](const Taps& t) { return t.first < from; });
  const auto end =
      std::partition_point(begin, rows_.end(), [to](const Taps& t) { return t.last() < to; });
  return {int(begin - rows_.begin()), int(end - rows_.begin())};
}

std::vector<PixelRect> PictureReducer::bands(const PixelRect& area, int rows) const {
  const PixelRect to = averaged(area);
  if (to.isEmpty()) return {};
  const int budget = std::max(rows / block_, 1);
  std::vector<PixelRect> result;
  auto [y, end] = within(to.y, to.maxY());
  while (y < end) {
    const int top = rows_[std::size_t(y)].first;
    int bottom = rows_[std::size_t(y)].last() + 1;
    while (++y < end && rows_[std::size_t(y)].last() + 1 - top <= budget) {
      bottom = rows_[std::size_t(y)].last() + 1;
    }
    const int maxY = std::min(bottom * block_, area.maxY());
    result.push_back({area.x, top * block_, area.width, maxY - top * block_});
  }
  return result;
}

PixelRect PictureReducer::affected(const PixelRect& changed) const {
  const PixelRect area = averaged(intersection(changed, {0, 0, sourceWidth_, sourceHeight_}));
  if (area.isEmpty()) return {};
  const auto [x0, x1] = reach(columns_, area.x, area.maxX());
  const auto [y0, y1] = reach(rows_, area.y, area.maxY());
  return intersection({x0, y0, x1 - x0, y1 - y0}, {0, 0, width(), height()});
}

void PictureReducer::reduceDown(const std::uint8_t* pixels, std::size_t stride,
                                const PixelRect& area, ReducedDown& down) const {
  const PixelRect to = averaged(area);
  if (to.isEmpty() || down.columns != averagedWidth_ || down.rows != height()) return;
  const auto [begin, end] = within(to.y, to.maxY());
  if (begin >= end) return;
  if (block_ > 1) {
    average(pixels, stride, area, down);
    pixels = down.averaged.data();
    stride = std::size_t(to.width) * channels;
  }
  reduction::weighDown(pixels, stride, to.y, &rows_[std::size_t(begin)], end - begin,
                       weights_.data(), to.width * channels,
                       down.mutableRow(begin) + std::size_t(to.x) * channels, down.stride());
}

// Averages the source pixels of `source` (whole blocks) into its blocks, packed rows, in
// `down.averaged`.
void PictureReducer::average(const std::uint8_t* pixels, std::size_t stride,
                             const PixelRect& source, ReducedDown& down) const {
  const PixelRect to = averaged(source);
  down.averaged.resize(std::size_t(to.area()) * channels);
  down.rowSums.resize(std::size_t(source.width) * channels);
  down.blockSums.resize(std::size_t(to.width) * channels);
  std::vector<std::uint16_t>& sums = down.rowSums;
  const std::uint16_t* blocks = down.blockSums.data();
  std::uint8_t* out = down.averaged.data();
  const int whole = source.width / block_;  // blocks of full width; the last may be narrower
  for (int by = 0; by < to.height; ++by, out += std::size_t(to.width) * channels) {
    const int top = by * block_;
    const int rows = std::min(block_, source.height - top);
    std::fill(sums.begin(), sums.end(), 0);
    addRows(pixels + stride * std::size_t(top), stride, rows, source.width * channels, sums.data());
    foldColumns(block_, sums.data(), whole, down.blockSums.data());
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

void PictureReducer::reduce(const ReducedDown& down, Frame& out, const PixelRect& area) const {
  const PixelRect rect = intersection(area, {0, 0, width(), height()});
  if (rect.isEmpty() || down.columns != averagedWidth_ || down.rows != height() ||
      out.width() != width() || out.height() != height()) {
    return;
  }
  reduction::weighAcross(down.row(rect.y), down.stride(), rect.height, 0,
                         &columns_[std::size_t(rect.x)], rect.width, weights_.data(),
                         out.mutableRow(rect.y) + std::size_t(rect.x) * channels, out.stride());
}

void reduceWhole(const PictureReducer& reducer, const Frame& source, Frame& out) {
  ReducedDown down = reducer.reducedDown();
  reducer.reduceDown(source.pixels(), source.stride(),
                     {0, 0, reducer.sourceWidth(), reducer.sourceHeight()}, down);
  reducer.reduce(down, out, {0, 0, reducer.width(), reducer.height()});
}

}  // namespace orlet
