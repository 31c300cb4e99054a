#include "capture/FramePool.h"

#include <atomic>
#include <cstring>

namespace orlet {
namespace {

// Enough history to bring back a buffer that readers held for a few frames; an older one is
// copied whole.
constexpr std::size_t historyLength = 8;

// Whether `rect` lies wholly inside one of `rects`: copying it would be overwritten anyway.
bool covered(const PixelRect& rect, const std::vector<PixelRect>& rects) {
  for (const auto& r : rects) {
    if (rect.x >= r.x && rect.y >= r.y && rect.maxX() <= r.maxX() && rect.maxY() <= r.maxY()) {
      return true;
    }
  }
  return false;
}

}  // namespace

FramePool::FramePool(int width, int height, std::size_t capacity, Allocator allocate)
    : width_(width), height_(height), capacity_(capacity), allocate_(std::move(allocate)) {
  slots_.reserve(capacity_);
}

std::shared_ptr<const Frame> FramePool::current() const {
  return current_ == none ? nullptr : slots_[current_].frame;
}

std::size_t FramePool::freeSlot() {
  // A count of one means only the pool holds the buffer. Readers drop their references on
  // other threads; the fence orders their last reads before our writes.
  auto isFree = [](const Slot& slot) { return slot.frame.use_count() == 1; };
  std::size_t best = none;
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (!isFree(slots_[i])) continue;
    if (best == none || slots_[i].version > slots_[best].version) best = i;
  }
  if (best == none && slots_.size() < capacity_) {
    slots_.push_back({allocate_(width_, height_), 0});
    best = slots_.size() - 1;
  }
  std::atomic_thread_fence(std::memory_order_acquire);
  return best;
}

std::shared_ptr<Frame> FramePool::acquire(const std::vector<PixelRect>& changed) {
  const std::size_t index = freeSlot();
  if (index == none) return nullptr;
  bringUpToDate(slots_[index], changed);
  return slots_[index].frame;
}

void FramePool::bringUpToDate(Slot& slot, const std::vector<PixelRect>& changed) {
  if (current_ == none || slot.version == version_) return;
  const Frame& latest = *slots_[current_].frame;
  const bool historyCovers =
      slot.version > 0 && !history_.empty() && history_.front().version <= slot.version + 1;
  auto copy = [&](const PixelRect& rect) {
    if (!covered(rect, changed)) copyRect(latest, *slot.frame, rect);
  };
  if (!historyCovers) {
    copy({0, 0, width_, height_});
  } else {
    for (const auto& change : history_) {
      if (change.version <= slot.version) continue;
      for (const auto& rect : change.rects) copy(rect);
    }
  }
  slot.version = version_;
}

void FramePool::copyRect(const Frame& from, Frame& to, const PixelRect& rect) const {
  const PixelRect r = intersection(rect, {0, 0, width_, height_});
  if (r.isEmpty()) return;
  const std::size_t offset = static_cast<std::size_t>(r.x) * Frame::bytesPerPixel;
  const std::size_t bytes = static_cast<std::size_t>(r.width) * Frame::bytesPerPixel;
  for (int y = r.y; y < r.maxY(); ++y) {
    std::memcpy(to.mutableRow(y) + offset, from.row(y) + offset, bytes);
  }
}

bool FramePool::sameWithin(const Frame& a, const Frame& b,
                           const std::vector<PixelRect>& rects) const {
  // The fourth byte is padding: only the colours count.
  constexpr std::uint32_t colour = 0x00FFFFFF;
  for (const auto& rect : rects) {
    const PixelRect r = intersection(rect, {0, 0, width_, height_});
    for (int y = r.y; y < r.maxY(); ++y) {
      const auto* pa = a.row(y) + std::size_t(r.x) * Frame::bytesPerPixel;
      const auto* pb = b.row(y) + std::size_t(r.x) * Frame::bytesPerPixel;
      std::uint32_t differs = 0;
      for (int x = 0; x < r.width; ++x) {
        std::uint32_t va, vb;
        std::memcpy(&va, pa + std::size_t(x) * 4, 4);
        std::memcpy(&vb, pb + std::size_t(x) * 4, 4);
        differs |= (va ^ vb) & colour;
      }
      if (differs != 0) return false;
    }
  }
  return true;
}

bool FramePool::commit(const std::shared_ptr<Frame>& frame, const std::vector<PixelRect>& changed) {
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].frame != frame) continue;
    // Updated in place, the frame has nothing left to compare with.
    if (current_ != none && i != current_ && sameWithin(*frame, *slots_[current_].frame, changed)) {
      slots_[i].version = version_;
      return false;
    }
    slots_[i].version = ++version_;
    current_ = i;
    history_.push_back({version_, changed});
    if (history_.size() > historyLength) history_.pop_front();
    return true;
  }
  return false;
}

}  // namespace orlet

namespace orlet {

void FramePool::discard(const std::shared_ptr<Frame>& frame) {
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].frame != frame) continue;
    slots_[i].version = 0;
    if (i == current_) {  // it was being updated in place: there is no good picture left
      current_ = none;
      history_.clear();
    }
  }
}

}  // namespace orlet
