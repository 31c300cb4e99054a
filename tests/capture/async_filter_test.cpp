#include "capture/AsyncFilter.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace orlet {
namespace {

TEST(AsyncFilterTest, TestsOneElementAtATimeInOrderAndKeepsTheAccepted) {
  std::vector<int> asked;
  std::function<void(bool)> pending;
  std::optional<std::vector<int>> result;

  asyncFilter<int>(
      {1, 2, 3, 4},
      [&](const int& value, std::function<void(bool)> resume) {
        asked.push_back(value);
        pending = std::move(resume);
      },
      [&](std::vector<int> kept) { result = std::move(kept); });

  // The second element is not tested before the first answered.
  EXPECT_EQ(asked, std::vector<int>{1});
  for (bool keep : {true, false, true}) {
    auto resume = std::move(pending);
    resume(keep);
  }
  EXPECT_EQ(asked, (std::vector<int>{1, 2, 3, 4}));
  EXPECT_FALSE(result.has_value());
  auto last = std::move(pending);
  last(true);
  EXPECT_EQ(result, (std::vector<int>{1, 3, 4}));
}

TEST(AsyncFilterTest, ImmediateAnswersFinishWithoutGrowingTheStackAndRepeatsAreIgnored) {
  std::vector<int> many(200000);
  for (int i = 0; i < int(many.size()); ++i) many[i] = i;
  std::optional<std::vector<int>> result;

  asyncFilter<int>(
      many,
      [](const int& value, std::function<void(bool)> resume) {
        resume(value % 2 == 0);
        resume(true);  // a second answer changes nothing
      },
      [&](std::vector<int> kept) { result = std::move(kept); });

  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->size(), many.size() / 2);
  EXPECT_EQ(result->back(), int(many.size()) - 2);
}

TEST(AsyncFilterTest, AnEmptyListCompletesAtOnceWithNothing) {
  std::optional<std::vector<int>> result;
  asyncFilter<int>(
      {}, [](const int&, std::function<void(bool)>) { FAIL() << "nothing to test"; },
      [&](std::vector<int> kept) { result = std::move(kept); });
  EXPECT_EQ(result, std::vector<int>{});
}

}  // namespace
}  // namespace orlet
