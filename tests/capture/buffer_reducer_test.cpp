#include <gtest/gtest.h>

#include <random>

#include "capture/BufferReducer.h"

namespace orlet {
namespace {

void scribble(Frame& picture, const PixelRect& r, std::mt19937& random) {
  for (int y = r.y; y < r.maxY(); ++y) {
    auto* row = picture.mutableRow(y) + std::size_t(r.x) * Frame::bytesPerPixel;
    const std::size_t bytes = std::size_t(r.width) * Frame::bytesPerPixel;
    for (std::size_t i = 0; i < bytes; ++i) row[i] = std::uint8_t(random());
  }
}

// After a change of part of the buffer, the published picture is exactly what reducing the whole
// new buffer gives, and it says what changed; a redraw of the same pixels publishes nothing.
TEST(BufferReducer, APartialChangeGivesWhatAWholeReductionGives) {
  constexpr int width = 640, height = 360, outWidth = 225, outHeight = 126;
  std::mt19937 random(7);
  const auto source = Frame::allocate(width, height);
  scribble(*source, {0, 0, width, height}, random);
  BufferReducer reducer(width, height, outWidth, outHeight);
  FrameRef frame;
  ASSERT_EQ(reducer.read(source->pixels(), source->stride(), {}, frame), BufferReducer::Result::ok);

  const PixelRect change{100, 50, 60, 40};
  scribble(*source, change, random);
  ASSERT_EQ(reducer.read(source->pixels(), source->stride(), {change}, frame),
            BufferReducer::Result::ok);
  ASSERT_EQ(frame->changed().size(), 1u);
  EXPECT_LT(frame->changed().front().area(), std::int64_t{outWidth} * outHeight / 4);
  const auto expected = Frame::allocate(outWidth, outHeight);
  reduceWhole(PictureReducer(width, height, outWidth, outHeight), *source, *expected);
  for (int y = 0; y < outHeight; ++y) {
    for (int x = 0; x < outWidth; ++x) {
      for (int c = 0; c < 3; ++c) {
        ASSERT_EQ(frame->row(y)[x * 4 + c], expected->row(y)[x * 4 + c]) << x << "," << y;
      }
    }
  }
  EXPECT_EQ(reducer.read(source->pixels(), source->stride(), {change}, frame),
            BufferReducer::Result::unchanged);
}

}  // namespace
}  // namespace orlet
