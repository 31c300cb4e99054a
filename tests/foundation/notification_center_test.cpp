#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "foundation/NotificationCenter.h"
#include "foundation/Observable.h"

namespace orlet {
namespace {

TEST(NotificationCenter, DeliversByNameUntilTheSubscriptionEnds) {
  NotificationCenter center;
  std::vector<std::string> log;
  auto a = center.observe(notification::windowDidShow, [&] { log.push_back("a"); });
  std::optional<Subscription> b =
      center.observe(notification::windowDidShow, [&] { log.push_back("b"); });
  auto other = center.observe(notification::windowDidHide, [&] { log.push_back("hide"); });

  center.post(notification::windowDidShow);
  b.reset();
  center.post(notification::windowDidShow);
  EXPECT_EQ(log, (std::vector<std::string>{"a", "b", "a"}));
}

TEST(NotificationCenter, AnObserverRemovedDuringAPostIsNotCalled) {
  NotificationCenter center;
  int secondCalls = 0;
  Subscription second;
  auto first = center.observe("n", [&] { second.cancel(); });
  second = center.observe("n", [&] { ++secondCalls; });
  center.post("n");
  EXPECT_EQ(secondCalls, 0);
}

TEST(NotificationCenter, SubscriptionMayOutliveTheCentre) {
  Subscription s;
  {
    NotificationCenter center;
    s = center.observe("n", [] {});
  }
  s.cancel();  // must not touch the destroyed centre
  SUCCEED();
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
