#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "capture/PixelRect.h"
#include "platform/CaptureFrame.h"

namespace orlet {

// Buffers for the successive pictures of one display, where each picture is the previous one
// with some rectangles changed. A buffer that readers still hold is never written (they were
// promised an immutable frame); a free one is brought up to date by copying only the
// rectangles that changed since it was last current, so a small change costs a small copy.
// Used by one thread.
class FramePool {
 public:
  using Allocator = std::function<std::shared_ptr<Frame>(int width, int height)>;

  FramePool(int width, int height, std::size_t capacity, Allocator allocate);

  // A buffer that no reader holds and that equals the current picture outside `changed`
  // (picture coordinates), which the caller then fills; null when every buffer is held and
  // the pool is full. While current() is null, everything is to be filled.
  std::shared_ptr<Frame> acquire(const std::vector<PixelRect>& changed);

  // Makes `frame`, acquired and filled, the current picture; false, leaving the current picture
  // as it is, when `frame` equals it within `changed` (a redraw of the same pixels). The frame
  // then stays up to date for the next acquire.
  bool commit(const std::shared_ptr<Frame>& frame, const std::vector<PixelRect>& changed);

  // Gives back `frame`, acquired but not filled: its content is unknown from now on. If it was
  // the current picture (updated in place), there is no current picture any more.
  void discard(const std::shared_ptr<Frame>& frame);

  // The number of the current picture, counting commits from 1.
  std::uint64_t version() const { return version_; }

  // The current picture, or null before the first commit.
  std::shared_ptr<const Frame> current() const;

  int width() const { return width_; }
  int height() const { return height_; }

 private:
  struct Slot {
    std::shared_ptr<Frame> frame;
    std::uint64_t version = 0;  // the picture it holds; 0: none
  };
  struct Change {
    std::uint64_t version;
    std::vector<PixelRect> rects;
  };

  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::size_t freeSlot();
  void bringUpToDate(Slot& slot, const std::vector<PixelRect>& changed);
  void copyRect(const Frame& from, Frame& to, const PixelRect& rect) const;
  bool sameWithin(const Frame& a, const Frame& b, const std::vector<PixelRect>& rects) const;

  int width_;
  int height_;
  std::size_t capacity_;
  Allocator allocate_;
  std::vector<Slot> slots_;
  std::size_t current_ = none;
  std::uint64_t version_ = 0;
  std::deque<Change> history_;  // the rectangles each recent version changed
};

}  // namespace orlet
