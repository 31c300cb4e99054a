#include <gtest/gtest.h>

#include "update/Version.h"

namespace orlet {
namespace {

struct Ordering {
  const char* older;
  const char* newer;
};

TEST(VersionComparison, OrdersReleasesAndPreReleasesAsUpdateFrameworksDo) {
  const Ordering table[] = {
      {"1.0", "1.0.1"},     {"1.9", "1.10"},    {"1.99.99", "2.0"},  {"1.0b1", "1.0"},
      {"1.0-beta", "1.0"},  {"1.0a1", "1.0a2"}, {"1.0b2", "1.0rc1"}, {"1.0b9", "1.0b10"},
      {"0.1.0b5", "0.1.0"}, {"1.0", "1.0.1b1"}, {"9", "10"},         {"1", "99999999999999999999"},
      {"1.0b2", "1.0.1"},   {"1.0", "1.0-1"},   {"2.0rc1", "2.0.0"},
  };
  for (const auto& [older, newer] : table) {
    EXPECT_LT(compareVersions(older, newer), 0) << older << " < " << newer;
    EXPECT_GT(compareVersions(newer, older), 0) << newer << " > " << older;
  }
}

TEST(VersionComparison, SpellingsOfTheSameVersionAreEqual) {
  const Ordering table[] = {{"1.0", "1.0"}, {"1.0", "1.0.0"}, {"01.2", "1.2"}, {"1-2", "1.2"}};
  for (const auto& [a, b] : table) {
    EXPECT_EQ(compareVersions(a, b), 0) << a << " = " << b;
    EXPECT_EQ(compareVersions(b, a), 0) << b << " = " << a;
  }
}

}  // namespace
}  // namespace orlet
