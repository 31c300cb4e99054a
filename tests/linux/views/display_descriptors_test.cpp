#include <gtest/gtest.h>

#include "linux/views/DescriptorSamples.h"
#include "linux/x11/DisplayDescriptors.h"
#include "views/ScreenInfo.h"

namespace orlet::x11 {
namespace {

TEST(DisplayDescriptors, EdidMonitorNameIsTheTrimmedNameDescriptor) {
  EXPECT_EQ(edidMonitorName(test::edidNaming("DELL U2720Q")), "DELL U2720Q");
  EXPECT_EQ(edidMonitorName(test::edidNaming("ColorEdge CG2")), "ColorEdge CG2");  // 13 chars
  EXPECT_EQ(edidMonitorName(test::edidNaming("")), std::nullopt);

  auto notAnEdid = test::edidNaming("DELL U2720Q");
  notAnEdid[1] = 0x00;
  EXPECT_EQ(edidMonitorName(notAnEdid), std::nullopt);
  auto truncated = test::edidNaming("DELL U2720Q");
  truncated.resize(100);
  EXPECT_EQ(edidMonitorName(truncated), std::nullopt);
  // A serial-number descriptor (0xFF) is not a name.
  auto serialOnly = test::edidNaming("12345");
  serialOnly[72 + 3] = 0xFF;
  EXPECT_EQ(edidMonitorName(serialOnly), std::nullopt);
}

TEST(DisplayDescriptors, IccDescriptionReadsVersion2And4Profiles) {
  EXPECT_EQ(iccProfileDescription(test::iccProfileDescribed("sRGB IEC61966-2.1", false)),
            "sRGB IEC61966-2.1");
  EXPECT_EQ(iccProfileDescription(test::iccProfileDescribed("Display P3", true)), "Display P3");
  EXPECT_EQ(iccProfileDescription({}), std::nullopt);

  auto noSignature = test::iccProfileDescribed("Display P3", true);
  noSignature[36] = 'x';
  EXPECT_EQ(iccProfileDescription(noSignature), std::nullopt);
  auto cut = test::iccProfileDescribed("Display P3", true);
  cut.resize(cut.size() - 4);  // the string runs past the end
  EXPECT_EQ(iccProfileDescription(cut), std::nullopt);
}

TEST(DisplayDescriptors, PixelEncodingGivesTheDepthLabelOfTheRootVisual) {
  struct Case {
    std::uint32_t red, green, blue;
    int depth;
    const char* text;
    const char* label;
  };
  const Case cases[] = {
      {0xFF0000, 0x00FF00, 0x0000FF, 24, "R8G8B8", "8-bit"},
      {0x3FF00000, 0x000FFC00, 0x000003FF, 30, "R10G10B10", "10-bit"},
      {0xF800, 0x07E0, 0x001F, 16, "R5G6B5", "8-bit"},
      {0, 0, 0, 8, "P8", "8-bit"},
  };
  for (const auto& c : cases) {
    const std::string text = pixelEncodingText(c.red, c.green, c.blue, c.depth);
    EXPECT_EQ(text, c.text);
    EXPECT_EQ(colorDepthLabel(text), c.label) << text;
  }
}

TEST(DisplayDescriptors, RefreshRateOfAModeLine) {
  EXPECT_EQ(modeRefreshRate(173000000, 2576, 1120, false, false), 60);  // 59.96 Hz
  EXPECT_EQ(modeRefreshRate(312250000, 3488, 1493, false, false), 60);
  EXPECT_EQ(modeRefreshRate(297000000, 2640, 1500, false, false), 75);
  EXPECT_EQ(modeRefreshRate(74250000, 2200, 1125, true, false), 60);  // 1080i: 60 fields
  EXPECT_EQ(modeRefreshRate(25175000, 800, 525, false, true), 30);
  EXPECT_EQ(modeRefreshRate(0, 2576, 1120, false, false), 0);
  EXPECT_EQ(modeRefreshRate(173000000, 0, 1120, false, false), 0);
}

}  // namespace
}  // namespace orlet::x11
