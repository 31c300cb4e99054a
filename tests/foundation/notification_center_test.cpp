#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "foundation/NotificationCenter.h"
#include "foundation/Observable.h"

namespace orlet {
namespace {

TEST(NotificationCenter, DeliversByNameToObserversStillSubscribed) {
  NotificationCenter center;
  std::vector<std::string> log;
  std::optional<Subscription> late;
  auto first = center.observe(notification::windowDidShow, [&] {
    log.push_back("first");
    late.reset();  // removed during the post: not called any more
  });
  late = center.observe(notification::windowDidShow, [&] { log.push_back("late"); });
  auto other = center.observe(notification::windowDidHide, [&] { log.push_back("hide"); });

  center.post(notification::windowDidShow);
  first.cancel();
  center.post(notification::windowDidShow);
  EXPECT_EQ(log, std::vector<std::string>{"first"});
}

// A subscription that outlives its centre is inert: cancelling it later leaves alone whatever now
// lives where the centre was, a new centre and its observers included.
TEST(NotificationCenter, SubscriptionMayOutliveTheCentre) {
  std::optional<NotificationCenter> center(std::in_place);
  Subscription stale = center->observe("n", [] {});
  center.emplace();
  int calls = 0;
  auto live = center->observe("n", [&] { ++calls; });
  stale.cancel();
  center->post("n");
  EXPECT_EQ(calls, 1);
}

TEST(Published, ObserversRunBeforeTheChangeWithTheNewValue) {
  Published<int> value(1);
  std::vector<std::pair<int, int>> seen;  // (old, new)
  auto sub = value.observe([&](const int& next) { seen.emplace_back(value.get(), next); });
  value.set(2);
  value.set(2);
  sub.cancel();
  value.set(3);
  EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{1, 2}, {2, 2}}));
  EXPECT_EQ(*value, 3);
}

}  // namespace
}  // namespace orlet
