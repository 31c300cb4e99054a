#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/Geometry.h"
#include "foundation/Subscription.h"

namespace orlet {

// The system cursor as it looks now: premultiplied ARGB pixels, row by row, `width` x `height`,
// and the hot spot from its top-left corner, in device pixels.
struct CursorImage {
  int width = 0;
  int height = 0;
  Point hotSpot;
  std::vector<std::uint32_t> argb;
  // Changes whenever the desktop changes the cursor's shape.
  std::uint64_t serial = 0;
};

// Shared and immutable: a sample hands the same image on without copying its pixels.
using CursorImageRef = std::shared_ptr<const CursorImage>;

class CursorSource {
 public:
  virtual ~CursorSource() = default;

  // The current cursor; nullptr when it is not known (hidden, or the desktop cannot tell).
  virtual CursorImageRef currentCursor() const = 0;

  // Calls `changed` on the main thread each time the desktop changes the cursor's shape, for as
  // long as the subscription is held; a desktop that cannot tell never calls it.
  [[nodiscard]] virtual Subscription observeChanges(std::function<void()> changed) const {
    (void)changed;
    return {};
  }
};

}  // namespace orlet
