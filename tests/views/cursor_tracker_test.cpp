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
  int publicationsOver(Seconds duration) {
    int published = 0;
    auto counting = tracker.mouseScreenPosition.observe([&](const Point&) { ++published; });
    scheduler.advance(duration);
    return published;
  }

  test::VirtualScheduler scheduler;
  test::FakeWindowServer server;
  test::FakeCursorSource cursor;
  CursorTracker tracker{scheduler, cursor, server};
};

// What changed is published: the cursor itself (not a copy of its
// pixels), its hot spot and the pointer in global coordinates, a display left of the main one
// included. A still pointer under the same cursor publishes nothing more.
TEST_F(CursorTrackerTest, PublishesEachChange) {
  cursor.cursor = test::FakeCursorSource::make(24, 32, {3, 5});
  server.movePointer({-500, 200});
  tracker.startTracking(7);
  tracker.startTracking(7);  // neither restarts nor doubles the sampling
  EXPECT_EQ(publicationsOver(aboutASecond), 1);
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

  int moved = 0;
  auto counting = tracker.mouseScreenPosition.observe([&](const Point&) { ++moved; });
  for (int x = 1; x <= 10; ++x) {
    server.movePointer({100.0 + x, 0});
    scheduler.advance(CursorTracker::sampleInterval);
  }
  EXPECT_EQ(moved, 10);

  tracker.stopTracking();
  server.movePointer({5, 5});
  const int queries = server.pointerQueries;
  EXPECT_EQ(publicationsOver(aboutASecond), 0);
  EXPECT_EQ(server.pointerQueries, queries);
  EXPECT_EQ(tracker.mouseScreenPosition.get(), (Point{110, 0}));  // the last values stay
  tracker.stopTracking();                                         // harmless
}

// Without a known cursor nothing is published, the position included.
TEST_F(CursorTrackerTest, NothingIsPublishedWithoutACursor) {
  server.movePointer({300, 300});
  tracker.startTracking(1);
  EXPECT_EQ(publicationsOver(Seconds{0.5}), 0);
  EXPECT_EQ(tracker.cursorImage.get(), nullptr);
  EXPECT_EQ(tracker.mouseScreenPosition.get(), (Point{0, 0}));
}

// A new shape under a resting pointer (a busy cursor, say) is published on the desktop's notice,
// not at the next still sample; once the tracking stopped, a notice changes nothing.
TEST_F(CursorTrackerTest, ANewShapeUnderAStillPointerIsPublishedAtOnce) {
  cursor.cursor = test::FakeCursorSource::make(24, 32, {3, 5});
  tracker.startTracking(7);
  scheduler.advance(Seconds{2});  // long enough to sample at the still rate
  cursor.change(test::FakeCursorSource::make(32, 32, {16, 16}, 2));
  scheduler.runUntilIdle();
  EXPECT_EQ(tracker.cursorImage.get(), cursor.cursor);
  EXPECT_EQ(tracker.hotSpot.get(), (Point{16, 16}));

  tracker.stopTracking();
  cursor.change(test::FakeCursorSource::make(8, 8, {0, 0}, 3));
  scheduler.runUntilIdle();
  EXPECT_NE(tracker.cursorImage.get(), cursor.cursor);
}

}  // namespace
}  // namespace orlet
