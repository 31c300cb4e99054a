#include <gtest/gtest.h>

#include "foundation/UserDefaults.h"

namespace orlet {
namespace {

class UserDefaultsTest : public ::testing::Test {
 protected:
  MemoryDefaultsStore store;
  UserDefaults defaults{store};
};

TEST_F(UserDefaultsTest, NumberLookupCountsOnlyValuesThatConvertToFloatingPoint) {
  store.setValue("double", 12.5);
  store.setValue("int", std::int64_t{-40});
  store.setValue("bool", true);
  store.setValue("numericText", std::string(" 1920.5 "));  // how a text backend returns numbers
  store.setValue("junk", std::string("12px"));
  store.setValue("empty", std::string(""));
  store.setValue("nan", std::string("nan"));

  EXPECT_EQ(defaults.number("double"), 12.5);
  EXPECT_EQ(defaults.number("int"), -40.0);
  EXPECT_EQ(defaults.number("bool"), 1.0);
  EXPECT_EQ(defaults.number("numericText"), 1920.5);
  EXPECT_EQ(defaults.number("junk"), std::nullopt);
  EXPECT_EQ(defaults.number("empty"), std::nullopt);
  EXPECT_EQ(defaults.number("nan"), std::nullopt);
  EXPECT_EQ(defaults.number("absent"), std::nullopt);
}

TEST_F(UserDefaultsTest, TypedLookupsFallBackToTheirDefaults) {
  store.setValue("pinnedText", std::string("true"));
  store.setValue("pinnedYes", std::string("YES"));
  store.setValue("pinnedZero", std::int64_t{0});
  store.setValue("mask", std::string("2304"));
  store.setValue("maskJunk", std::string("abc"));
  store.setValue("chars", std::string("A+B"));
  store.setValue("charsNumber", std::int64_t{7});

  EXPECT_TRUE(defaults.boolean("pinnedText"));
  EXPECT_TRUE(defaults.boolean("pinnedYes"));
  EXPECT_FALSE(defaults.boolean("pinnedZero"));
  EXPECT_FALSE(defaults.boolean("absent"));
  EXPECT_EQ(defaults.integer("mask"), 2304);
  EXPECT_EQ(defaults.integer("maskJunk"), 0);
  EXPECT_EQ(defaults.string("chars"), "A+B");
  EXPECT_EQ(defaults.string("charsNumber"), "7");
  EXPECT_EQ(defaults.string("absent"), std::nullopt);
}

TEST_F(UserDefaultsTest, WritesKeepTheirKind) {
  defaults.set("x", 3.25);
  defaults.set("pinned", true);
  defaults.set("label", "text");  // a literal must stay a string
  EXPECT_EQ(defaults.number("x"), 3.25);
  EXPECT_TRUE(defaults.boolean("pinned"));
  EXPECT_EQ(defaults.string("label"), "text");
  defaults.remove("x");
  EXPECT_FALSE(defaults.hasValue("x"));
}

}  // namespace
}  // namespace orlet
