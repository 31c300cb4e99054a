#include "capture/AreaReducer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orlet {
namespace {

// Weights along one axis sum to 2^12; both axes together to 2^24, so 255 × 2^24 and the rounding
// still fit 32 bits.
constexpr int weightBits = 12;
constexpr std::uint32_t unit = 1u << weightBits;

}  // namespace

AreaReducer::AreaReducer(int sourceWidth, int sourceHeight, int width, int height)
    : sourceWidth_(sourceWidth), sourceHeight_(sourceHeight) {
  columns_ = spans(sourceWidth, std::max(width, 0), weights_);
  rows_ = spans(sourceHeight, std::max(height, 0), weights_);
}

std::vector<AreaReducer::Span> AreaReducer::spans(int from, int to,
                                                  std::vector<std::uint32_t>& weights) {
  std::vector<Span> result(std::size_t(std::max(to, 0)));
  if (from <= 0) return result;
  const double scale = double(from) / to;
  for (int i = 0; i < to; ++i) {
    const double start = i * scale;
    const double end = std::min(double(from), (i + 1) * scale);
    Span& span = result[std::size_t(i)];
    span.first = std::min(from - 1, int(std::floor(start)));
    span.weights = std::uint32_t(weights.size());
    std::uint32_t total = 0;
    std::size_t largest = weights.size();
    for (int j = span.first; j < from && j < end; ++j) {
      const double overlap = std::min(end, j + 1.0) - std::max(start, double(j));
      const auto w = std::uint32_t(std::lround(overlap / (end - start) * unit));
      if (largest == weights.size() || w > weights[largest]) largest = weights.size();
      weights.push_back(w);
      total += w;
      ++span.count;
    }
    weights[largest] += unit - total;  // exact sums: a flat area stays exactly its colour
  }
  return result;
}

int AreaReducer::firstSpanReaching(const std::vector<Span>& spans, int position) {
  // Spans are in source order: the first whose last source pixel is at or after `position`.
  auto it = std::partition_point(spans.begin(), spans.end(), [position](const Span& s) {
    return s.first + s.count - 1 < position;
  });
  return int(it - spans.begin());
}

PixelRect AreaReducer::affected(const PixelRect& source) const {
  if (source.isEmpty()) return {};
  const int x0 = firstSpanReaching(columns_, source.x);
  const int x1 = firstSpanReaching(columns_, source.maxX());
  const int y0 = firstSpanReaching(rows_, source.y);
  const int y1 = firstSpanReaching(rows_, source.maxY());
  // The span reaching maxX may start before it and so still depend on the change.
  const auto end = [](const std::vector<Span>& spans, int index, int limit) {
    if (index < int(spans.size()) && spans[std::size_t(index)].first < limit) ++index;
    return index;
  };
  const int xe = end(columns_, x1, source.maxX());
  const int ye = end(rows_, y1, source.maxY());
  return intersection({x0, y0, xe - x0, ye - y0}, {0, 0, width(), height()});
}

void AreaReducer::reduceRow(const Frame& source, int y, int x0, int x1, std::uint32_t* sums) const {
  const std::uint8_t* row = source.row(y);
  for (int x = x0; x < x1; ++x) {
    const Span& span = columns_[std::size_t(x)];
    const std::uint8_t* p = row + std::size_t(span.first) * Frame::bytesPerPixel;
    const std::uint32_t* w = weights_.data() + span.weights;
    std::uint32_t b = 0, g = 0, r = 0;
    for (int k = 0; k < span.count; ++k, p += Frame::bytesPerPixel) {
      b += p[0] * w[k];
      g += p[1] * w[k];
      r += p[2] * w[k];
    }
    sums[0] = b;
    sums[1] = g;
    sums[2] = r;
    sums += 3;
  }
}

void AreaReducer::reduce(const Frame& source, Frame& out, const PixelRect& area) const {
  const PixelRect rect = intersection(area, {0, 0, width(), height()});
  if (rect.isEmpty() || source.width() != sourceWidth_ || source.height() != sourceHeight_) return;
  const std::size_t n = std::size_t(rect.width) * 3;
  std::vector<std::uint32_t> reduced(n), sums(n);
  int reducedRow = -1;  // the source row `reduced` holds; rows shared by two outputs are kept
  for (int y = rect.y; y < rect.maxY(); ++y) {
    const Span& span = rows_[std::size_t(y)];
    std::fill(sums.begin(), sums.end(), 0u);
    for (int k = 0; k < span.count; ++k) {
      const int sy = span.first + k;
      if (sy != reducedRow) reduceRow(source, sy, rect.x, rect.maxX(), reduced.data());
      reducedRow = sy;
      const std::uint32_t w = weights_[span.weights + std::uint32_t(k)];
      // Each partial sum is at most 255 × 2^12, and the weights of a span sum to 2^12.
      for (std::size_t i = 0; i < n; ++i) sums[i] += reduced[i] * w;
    }
    std::uint8_t* to = out.mutableRow(y) + std::size_t(rect.x) * Frame::bytesPerPixel;
    constexpr std::uint32_t half = 1u << (2 * weightBits - 1);
    for (std::size_t i = 0; i < n; i += 3, to += Frame::bytesPerPixel) {
      to[0] = std::uint8_t((sums[i] + half) >> (2 * weightBits));
      to[1] = std::uint8_t((sums[i + 1] + half) >> (2 * weightBits));
      to[2] = std::uint8_t((sums[i + 2] + half) >> (2 * weightBits));
      to[3] = 0xFF;
    }
  }
}

}  // namespace orlet
