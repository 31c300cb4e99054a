#include <gtest/gtest.h>

#include "support/FakeInput.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "views/CursorTracker.h"

namespace orlet {
namespace {

// A second, give or take half a sample, so that rounding in the clock cannot lose the last one.
constexpr Seconds aboutASecond{1.0 + 0.5 / 60};

class CursorTrackerTest : public ::testing::Test {
 protected:
  int samplesOver(Seconds duration) {
    int samples = 0;
    auto counting = tracker.mouseScreenPosition.observe([&](const Point&) { ++samples; });
    scheduler.advance(duration);
    return samples;
  }

  test::VirtualScheduler scheduler;
  test::FakeWindowServer server;
  test::FakeCursorSource cursor;
  CursorTracker tracker{scheduler, cursor, server};
};

// Sixty samples a second, each publishing the cursor itself (not a copy of its pixels), its hot
// spot and the pointer in global coordinates, a display left of the main one included.
TEST_F(CursorTrackerTest, PublishesTheCursorAndThePointerSixtyTimesASecond) {
  cursor.cursor = test::FakeCursorSource::make(24, 32, {3, 5});
  server.movePointer({-500, 200});
  tracker.startTracking(7);
  tracker.startTracking(7);  // neither restarts nor doubles the sampling
  EXPECT_EQ(samplesOver(aboutASecond), 60);
  EXPECT_EQ(tracker.cursorImage.get(), cursor.cursor);
  EXPECT_EQ(tracker.hotSpot.get(), (Point{3, 5}));
  EXPECT_EQ(tracker.mouseScreenPosition.get(), (Point{-500, 200}));

  // A new shape comes with its own size and hot spot: nothing of the old one is kept.
  cursor.cursor = test::FakeCursorSource::make(32, 24, {16, 12}, 2);
  server.movePointer({100, 0});
  scheduler.advance(CursorTracker::sampleInterval);
  EXPECT_EQ(tracker.cursorImage.get()->width, 32);
  EXPECT_EQ(tracker.cursorImage.get()->height, 24);
  EXPECT_EQ(tracker.hotSpot.get(), (Point{16, 12}));
  EXPECT_EQ(tracker.mouseScreenPosition.get(), (Point{100, 0}));

  tracker.stopTracking();
  server.movePointer({5, 5});
  EXPECT_EQ(samplesOver(aboutASecond), 0);
  EXPECT_EQ(tracker.mouseScreenPosition.get(), (Point{100, 0}));  // the last values stay
  tracker.stopTracking();                                         // harmless
}

// Without a known cursor nothing is published, the position included.
TEST_F(CursorTrackerTest, NothingIsPublishedWithoutACursor) {
  server.movePointer({300, 300});
  tracker.startTracking(1);
  EXPECT_EQ(samplesOver(Seconds{0.5}), 0);
  EXPECT_EQ(tracker.cursorImage.get(), nullptr);
  EXPECT_EQ(tracker.mouseScreenPosition.get(), (Point{0, 0}));
}

}  // namespace
}  // namespace orlet
