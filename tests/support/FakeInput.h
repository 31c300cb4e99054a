#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "foundation/Scheduler.h"
#include "platform/CursorSource.h"
#include "platform/SyntheticInput.h"
#include "support/FakeWindowServer.h"

namespace orlet::test {

// Synthetic input that moves the fake server's pointer as the real one does, and logs what it
// was asked to do, with the time it was asked, for tests to read.
class FakeSyntheticInput final : public SyntheticInput {
 public:
  struct Event {
    std::string kind;  // "down", "up" or "warp"
    Point at;
    Seconds time;
    std::optional<Rect> onlyFrom = std::nullopt;  // a warp's condition
    friend bool operator==(const Event&, const Event&) = default;
  };

  FakeSyntheticInput(FakeWindowServer& server, const Scheduler& clock)
      : server_(server), clock_(clock) {}

  void leftButtonDown(Point at) override { record("down", at); }
  void leftButtonUp(Point at) override { record("up", at); }
  // A conditional warp from a pointer outside its rectangle leaves it, and the log, as they are.
  void warpPointer(Point at, std::optional<Rect> onlyFrom) override {
    if (onlyFrom && !onlyFrom->contains(server_.pointer())) return;
    record("warp", at, onlyFrom);
  }

  std::vector<Event> events;

 private:
  void record(const char* kind, Point at, std::optional<Rect> onlyFrom = std::nullopt) {
    server_.movePointer(at);
    events.push_back({kind, at, clock_.now(), onlyFrom});
  }

  FakeWindowServer& server_;
  const Scheduler& clock_;
};

// The cursor a test sets; none until then.
class FakeCursorSource final : public CursorSource {
 public:
  CursorImageRef currentCursor() const override { return cursor; }
  [[nodiscard]] Subscription observeChanges(std::function<void()> changed) const override {
    return changes_.add(std::move(changed));
  }

  // The desktop changes the cursor's shape, and says so.
  void change(CursorImageRef image) {
    cursor = std::move(image);
    changes_.call();
  }

  // A plain cursor of `width` x `height` with its hot spot at `hotSpot`.
  static CursorImageRef make(int width, int height, Point hotSpot, std::uint64_t serial = 1) {
    auto image = std::make_shared<CursorImage>();
    image->width = width;
    image->height = height;
    image->hotSpot = hotSpot;
    image->argb.assign(std::size_t(width) * std::size_t(height), 0xff000000u);
    image->serial = serial;
    return image;
  }

  CursorImageRef cursor;

 private:
  mutable HandlerList<> changes_;
};

}  // namespace orlet::test
