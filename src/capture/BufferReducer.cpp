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

BufferReducer::Result BufferReducer::update(std::vector<PixelRect> changed, const ReadAreas& read,
                                            FrameRef& frame) {
  if (!primed_) changed = {{0, 0, reducer_.sourceWidth(), reducer_.sourceHeight()}};
  std::vector<PixelRect> areas, affected;
  for (const auto& r : changed) {
    areas.push_back(reducer_.readArea(r));
    affected.push_back(reducer_.affected(r));
  }
  mergeOverlapping(areas);
  // Neighbouring changes overlap once widened by the filter: merged, no pixel is reduced twice.
  mergeOverlapping(affected);
  std::shared_ptr<Frame> target = pool_.acquire(affected);
  if (!target) return Result::busy;
  if (!read(areas)) {
    pool_.discard(target);
    primed_ = false;  // partly reduced: all of it is read again
    return Result::failed;
  }
  primed_ = true;
  for (const auto& a : affected) reducer_.reduce(down_, *target, a);
  if (!pool_.commit(target, affected)) return Result::unchanged;
  target->setChanges(pool_.version(), std::move(affected));
  frame = std::move(target);
  return Result::ok;
}

BufferReducer::Result BufferReducer::read(const std::uint8_t* pixels, std::size_t stride,
                                          std::vector<PixelRect> changed, FrameRef& frame) {
  return update(
      std::move(changed),
      [&](const std::vector<PixelRect>& areas) {
        for (const auto& a : areas) {
          reduceDown(pixels + stride * std::size_t(a.y) + std::size_t(a.x) * Frame::bytesPerPixel,
                     stride, a);
        }
        return true;
      },
      frame);
}

}  // namespace orlet
