#include <gtest/gtest.h>

#include "views/FakeDisplayInfoProvider.h"
#include "views/ScreenInfo.h"

namespace orlet {
namespace {

TEST(ScreenInfo, FirstListedDisplayIsTheMainOneOthersAreNumbered) {
  EXPECT_EQ(displayName(1), "Principal");
  EXPECT_EQ(displayName(12), "Écran 12");
}

TEST(ScreenInfo, DiagonalNeedsBothDimensionsAndRoundsHalvesAwayFromZero) {
  struct Case {
    Size mm;
    std::optional<int> inches;
  };
  const Case cases[] = {
      {{597, 336}, 27},  // 685.1 mm = 26.97"
      {{0, 0}, std::nullopt},   {{597, 0}, std::nullopt},
      {{0, 336}, std::nullopt}, {{-597, 336}, std::nullopt},
      {{304.8, 228.6}, 15},  // exactly 15.0"
      {{38.1, 50.8}, 3},     // exactly 2.5": halves go up
      {{342.9, 457.2}, 23},  // exactly 22.5"
      {{300, 200}, 14},      // 14.19"
  };
  for (const auto& c : cases) {
    EXPECT_EQ(diagonalInches(c.mm), c.inches) << c.mm.width << "x" << c.mm.height;
  }
}

TEST(ScreenInfo, ColorDepthTestsTenThenSixteenThenFloat) {
  const std::pair<const char*, const char*> cases[] = {
      {"R10G10B10", "10-bit"},    {"R16G16B16", "16-bit"},
      {"R16G16B16f10", "10-bit"},                            // "10" is looked for first
      {"RGBAf", "Float (HDR)"},   {"RGBAF", "Float (HDR)"},  // the float test ignores case
      {"R8G8B8", "8-bit"},        {"", "8-bit"},
  };
  for (const auto& [encoding, label] : cases) {
    EXPECT_EQ(colorDepthLabel(encoding), label) << encoding;
  }
}

// Each fact the provider knows replaces its default on its own.
TEST(ScreenInfo, KnownFactsReplaceTheDefaults) {
  test::FakeDisplayInfoProvider provider;
  EXPECT_EQ(getScreenInfo(provider, 7),
            (ScreenInfo{"Écran externe", 60, std::nullopt, "8-bit", std::nullopt}));
  provider.displays[7] = {{597, 336}, std::nullopt, "RGBAf", {}};
  EXPECT_EQ(getScreenInfo(provider, 7),
            (ScreenInfo{"Écran externe", 60, std::nullopt, "Float (HDR)", 27}));
  provider.displays[7].screen = ScreenDescription{"DELL U2720Q", 144, "Display P3"};
  EXPECT_EQ(getScreenInfo(provider, 7),
            (ScreenInfo{"DELL U2720Q", 144, "Display P3", "Float (HDR)", 27}));
}

TEST(ScreenInfo, DetailedInfoListsTheKnownLinesInOrder) {
  const ScreenInfo full{"DELL U2720Q", 60, "Display P3", "10-bit", 27};
  EXPECT_EQ(displayDetailedInfo(full, 2560, 1440),
            "DELL U2720Q\n27\"\n2560 × 1440\n16/9\n60 Hz\nDisplay P3\n10-bit");
  // No millimetre size and no colour space: those two lines go, the others remain.
  const ScreenInfo bare{"DUMMY1", 60, std::nullopt, "8-bit", std::nullopt};
  EXPECT_EQ(displayDetailedInfo(bare, 2048, 1080), "DUMMY1\n2048 × 1080\n55/29\n60 Hz\n8-bit");
}

}  // namespace
}  // namespace orlet
