#include "capture/BufferReducer.h"

namespace orlet {
namespace {

// Pictures per display: one being shown, one travelling to the main thread, one being filled.
constexpr std::size_t poolCapacity = 3;

}  // namespace

BufferReducer::BufferReducer(int sourceWidth, int sourceHeight, int width, int height)
    : reducer_(sourceWidth, sourceHeight, width, height),
      down_(reducer_.reducedDown()),
      pool_(width, height, poolCapacity, &Frame::allocate) {}

BufferReducer::Result BufferReducer::read(const std::uint8_t* pixels, std::size_t stride,
                                          std::vector<PixelRect> changed, FrameRef& frame) {
  if (!primed_) changed = {{0, 0, reducer_.sourceWidth(), reducer_.sourceHeight()}};
  std::vector<PixelRect> areas, affected;
  for (const auto& r : changed) {
    areas.push_back(reducer_.readArea(r));
    affected.push_back(reducer_.affected(r));
  }
  mergeOverlapping(areas);
  mergeOverlapping(affected);
  std::shared_ptr<Frame> target = pool_.acquire(affected);
  if (!target) return Result::busy;
  for (const auto& a : areas) {
    const auto* first =
        pixels + stride * std::size_t(a.y) + std::size_t(a.x) * Frame::bytesPerPixel;
    reducer_.reduceDown(first, stride, a, down_);
  }
  primed_ = true;
  for (const auto& a : affected) reducer_.reduce(down_, *target, a);
  if (!pool_.commit(target, affected)) return Result::unchanged;
  target->setChanges(pool_.version(), std::move(affected));
  frame = std::move(target);
  return Result::ok;
}

}  // namespace orlet
