#include "capture/PictureReducer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace orlet {
namespace {

// Weights along one axis sum to 2^12. Rows reduced across keep 8 fractional bits, so the
// vertical sums stay well inside 32 bits even with the filter's negative lobes.
constexpr int weightBits = 12;
constexpr std::int32_t unit = 1 << weightBits;
constexpr int rowShift = 4;
constexpr int outShift = weightBits + weightBits - rowShift;
constexpr double lobes = 2;  // Lanczos-2: sharp, with little ringing

double lanczos(double x) {
  if (x == 0) return 1;
  if (std::abs(x) >= lobes) return 0;
  const double px = std::numbers::pi * x;
  return lobes * std::sin(px) * std::sin(px / lobes) / (px * px);
}

}  // namespace

PictureReducer::PictureReducer(int sourceWidth, int sourceHeight, int width, int height)
    : sourceWidth_(sourceWidth), sourceHeight_(sourceHeight) {
  columns_ = spans(sourceWidth, std::max(width, 0), weights_);
  rows_ = spans(sourceHeight, std::max(height, 0), weights_);
  for (const Span& s : rows_) maxRowTaps_ = std::max(maxRowTaps_, s.count);
}

std::vector<PictureReducer::Span> PictureReducer::spans(int from, int to,
                                                        std::vector<std::int32_t>& weights) {
  std::vector<Span> result(std::size_t(std::max(to, 0)));
  if (from <= 0) return result;
  const double scale = double(from) / to;
  const double stretch = std::max(scale, 1.0);  // an enlargement interpolates, unfiltered
  const double support = lobes * stretch;
  for (int i = 0; i < to; ++i) {
    const double centre = (i + 0.5) * scale;
    const int first = std::clamp(int(std::ceil(centre - support - 0.5)), 0, from - 1);
    const int last = std::clamp(int(std::floor(centre + support - 0.5)), first, from - 1);
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
      weights.push_back(fixed);
      sum += fixed;
    }
    weights[largest] += unit - sum;  // exact sums: a flat area stays exactly its colour
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

PixelRect PictureReducer::affected(const PixelRect& source) const {
  if (source.isEmpty()) return {};
  const auto [x0, x1] = reach(columns_, source.x, source.maxX());
  const auto [y0, y1] = reach(rows_, source.y, source.maxY());
  return intersection({x0, y0, x1 - x0, y1 - y0}, {0, 0, width(), height()});
}

void PictureReducer::reduceRow(const Frame& source, int y, int x0, int x1,
                               std::int32_t* sums) const {
  const std::uint8_t* row = source.row(y);
  for (int x = x0; x < x1; ++x) {
    const Span& span = columns_[std::size_t(x)];
    const std::uint8_t* p = row + std::size_t(span.first) * Frame::bytesPerPixel;
    const std::int32_t* w = weights_.data() + span.weights;
    std::int32_t b = 0, g = 0, r = 0;
    for (int k = 0; k < span.count; ++k, p += Frame::bytesPerPixel) {
      b += p[0] * w[k];
      g += p[1] * w[k];
      r += p[2] * w[k];
    }
    constexpr std::int32_t half = 1 << (rowShift - 1);
    sums[0] = (b + half) >> rowShift;
    sums[1] = (g + half) >> rowShift;
    sums[2] = (r + half) >> rowShift;
    sums += 3;
  }
}

void PictureReducer::reduce(const Frame& source, Frame& out, const PixelRect& area) const {
  const PixelRect rect = intersection(area, {0, 0, width(), height()});
  if (rect.isEmpty() || source.width() != sourceWidth_ || source.height() != sourceHeight_) return;
  const std::size_t n = std::size_t(rect.width) * 3;
  // Source rows reduced across, kept while the next output rows still weigh them.
  const std::size_t ring = std::size_t(maxRowTaps_);
  std::vector<std::int32_t> reduced(n * ring), sums(n);
  std::vector<int> held(ring, -1);
  for (int y = rect.y; y < rect.maxY(); ++y) {
    const Span& span = rows_[std::size_t(y)];
    std::fill(sums.begin(), sums.end(), 0);
    for (int k = 0; k < span.count; ++k) {
      const int sy = span.first + k;
      const std::size_t slot = std::size_t(sy) % ring;
      std::int32_t* row = reduced.data() + slot * n;
      if (held[slot] != sy) reduceRow(source, sy, rect.x, rect.maxX(), row);
      held[slot] = sy;
      const std::int32_t w = weights_[span.weights + std::uint32_t(k)];
      for (std::size_t i = 0; i < n; ++i) sums[i] += row[i] * w;
    }
    std::uint8_t* to = out.mutableRow(y) + std::size_t(rect.x) * Frame::bytesPerPixel;
    constexpr std::int32_t half = 1 << (outShift - 1);
    const auto channel = [](std::int32_t sum) {
      return std::uint8_t(std::clamp((sum + half) >> outShift, 0, 255));
    };
    for (std::size_t i = 0; i < n; i += 3, to += Frame::bytesPerPixel) {
      to[0] = channel(sums[i]);
      to[1] = channel(sums[i + 1]);
      to[2] = channel(sums[i + 2]);
      to[3] = 0xFF;
    }
  }
}

}  // namespace orlet
