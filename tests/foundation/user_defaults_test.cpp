#include <gtest/gtest.h>

#include "foundation/UserDefaults.h"

namespace orlet {
namespace {

// Text backends (QSettings' INI files) hand numbers and switches back as strings; only what
// converts counts, so that a damaged file falls back to the defaults.
TEST(UserDefaults, NumbersAndSwitchesReadFromWhateverKindWasStored) {
  struct Case {
    DefaultsValue stored;
    std::optional<double> number;
    bool boolean;
  };
  const Case cases[] = {
      {12.5, 12.5, true},
      {std::int64_t{-40}, -40.0, true},
      {std::int64_t{0}, 0.0, false},
      {true, 1.0, true},
      {std::string(" 1920.5 "), 1920.5, true},
      {std::string("true"), 1.0, true},
      {std::string("YES"), std::nullopt, true},
      {std::string("12px"), std::nullopt, false},
      {std::string(""), std::nullopt, false},
      {std::string("nan"), std::nullopt, false},
  };
  for (const auto& c : cases) {
    MemoryDefaultsStore store;
    store.setValue("key", c.stored);
    const UserDefaults defaults{store};
    EXPECT_EQ(defaults.number("key"), c.number) << *defaults.string("key");
    EXPECT_EQ(defaults.boolean("key"), c.boolean) << *defaults.string("key");
  }
}

}  // namespace
}  // namespace orlet
