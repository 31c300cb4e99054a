#include "capture/PictureReducer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace orlet {
namespace {

void fill(Frame& frame, const PixelRect& rect, std::uint32_t (*colour)(int x, int y)) {
  for (int y = rect.y; y < rect.maxY(); ++y) {
    for (int x = rect.x; x < rect.maxX(); ++x) {
      const std::uint32_t value = colour(x, y);
      std::memcpy(frame.mutableRow(y) + x * 4, &value, 4);
    }
  }
}

struct Sizes {
  int sourceWidth, sourceHeight, width, height;
};

// Mirror and card sizes of real displays, and ratios that are not whole.
// Mirror and card sizes of real displays, ratios that are not whole, and sizes that end in a
// partial block.
const Sizes kSizes[] = {{2560, 1440, 900, 506}, {1920, 1080, 213, 120}, {3840, 2160, 197, 111},
                        {37, 23, 11, 7},        {75, 47, 9, 5},         {10, 10, 10, 10}};

TEST(PictureReducerTest, FlatAreasKeepTheirColourAndFineLinesBecomeTheirAverage) {
  for (const Sizes& s : kSizes) {
    PictureReducer reducer(s.sourceWidth, s.sourceHeight, s.width, s.height);
    auto source = Frame::allocate(s.sourceWidth, s.sourceHeight);
    auto out = Frame::allocate(s.width, s.height);

    fill(*source, {0, 0, s.sourceWidth, s.sourceHeight}, [](int, int) { return 0x00C08040u; });
    reduceWhole(reducer, *source, *out);
    for (int y = 0; y < s.height; ++y) {
      for (int x = 0; x < s.width; ++x) ASSERT_EQ(out->pixel(x, y), 0xFFC08040u);
    }
    if (s.width == s.sourceWidth) continue;

    // One-pixel lines, white on black: sampling would show lines or gaps; the mean is grey.
    fill(*source, {0, 0, s.sourceWidth, s.sourceHeight},
         [](int x, int) { return x % 2 ? 0xFFFFFFu : 0u; });
    reduceWhole(reducer, *source, *out);
    for (int x = 0; x < s.width; ++x) {
      const int blue = int(out->pixel(x, s.height / 2) & 0xFF);
      // A span of odd width holds one line more or less than half: at most 255 / width off.
      const double slack = 255.0 * s.width / s.sourceWidth + 1;
      ASSERT_NEAR(blue, 127.5, slack) << s.width << " column " << x;
    }
  }
}

TEST(PictureReducerTest, ReducingWhatAChangeAffectsEqualsReducingEverything) {
  std::mt19937 random(11);
  for (const Sizes& s : {Sizes{640, 360, 225, 127}, Sizes{75, 47, 9, 5}, Sizes{37, 23, 11, 7},
                         Sizes{10, 10, 10, 10}}) {
    PictureReducer reducer(s.sourceWidth, s.sourceHeight, s.width, s.height);
    auto source = Frame::allocate(s.sourceWidth, s.sourceHeight);
    ReducedDown down = reducer.reducedDown();
    auto partial = Frame::allocate(s.width, s.height);
    auto whole = Frame::allocate(s.width, s.height);
    reduceWhole(reducer, *source, *partial);
    reducer.reduceDown(source->pixels(), source->stride(), {0, 0, s.sourceWidth, s.sourceHeight},
                       down);
    for (int step = 0; step < 20; ++step) {
      const int x = int(random() % s.sourceWidth), y = int(random() % s.sourceHeight);
      const PixelRect change{x, y, 1 + int(random() % (s.sourceWidth - x)) / (1 + step % 4),
                             1 + int(random() % (s.sourceHeight - y)) / (1 + step % 4)};
      static std::uint32_t seed;
      seed = random();
      fill(*source, change, [](int px, int py) { return (seed ^ (px * 2654435761u + py)) >> 8; });
      // Only the pixels the change's output rows weigh are reduced again, from the source.
      const PixelRect read = reducer.readArea(change);
      reducer.reduceDown(source->row(read.y) + std::size_t(read.x) * 4, source->stride(), read,
                         down);
      reducer.reduce(down, *partial, reducer.affected(change));
      reduceWhole(reducer, *source, *whole);
      ASSERT_EQ(std::memcmp(partial->pixels(), whole->pixels(), whole->byteCount()), 0)
          << s.width << "x" << s.height << " step " << step;
    }
  }
}

// Every instruction-set level the processor has weighs exactly as the plain one, down and across:
// reductions with and without blocks, sizes that leave tails of channels, rows and columns, and
// an enlargement (few taps, not a multiple of four at the edges).
TEST(PictureReducerTest, EveryInstructionSetGivesThePlainResults) {
  std::mt19937 random(5);
  const reduction::Level previous = reduction::setLevel(reduction::Level::plain);
  for (const Sizes& s : {Sizes{2560, 1440, 900, 506}, Sizes{2560, 1440, 197, 111},
                         Sizes{1003, 517, 311, 97}, Sizes{301, 171, 900, 506}}) {
    PictureReducer reducer(s.sourceWidth, s.sourceHeight, s.width, s.height);
    auto source = Frame::allocate(s.sourceWidth, s.sourceHeight);
    for (std::size_t i = 0; i < source->byteCount(); ++i) {
      source->mutablePixels()[i] = std::uint8_t(random());
    }
    // Into sums and pixels that hold something else: a value left out shows.
    const auto reduce = [&](reduction::Level level, ReducedDown& down, Frame& out) {
      std::fill(down.sums.begin(), down.sums.end(), std::int16_t(0x5A5A));
      std::memset(out.mutablePixels(), 0x5A, out.byteCount());
      reduction::setLevel(level);
      reducer.reduceDown(source->pixels(), source->stride(), {0, 0, s.sourceWidth, s.sourceHeight},
                         down);
      reducer.reduce(down, out, {0, 0, s.width, s.height});
    };
    ReducedDown plainDown = reducer.reducedDown(), down = reducer.reducedDown();
    auto plain = Frame::allocate(s.width, s.height), out = Frame::allocate(s.width, s.height);
    reduce(reduction::Level::plain, plainDown, *plain);
    for (const reduction::Level level : {reduction::Level::avx2, reduction::Level::avx512}) {
      if (!reduction::available(level)) continue;
      reduce(level, down, *out);
      EXPECT_TRUE(down.sums == plainDown.sums)
          << s.width << "x" << s.height << " level " << int(level);
      EXPECT_EQ(std::memcmp(out->pixels(), plain->pixels(), plain->byteCount()), 0)
          << s.width << "x" << s.height << " level " << int(level);
    }
  }
  reduction::setLevel(previous);
}

}  // namespace
}  // namespace orlet
