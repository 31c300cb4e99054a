#include <gtest/gtest.h>

#include <sstream>

#include "linux/views/DescriptorSamples.h"
#include "linux/views/XcbTestConnection.h"
#include "linux/x11/RandrDisplayInfo.h"
#include "linux/x11/X11ScreenCapturePermission.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "views/ScreenInfo.h"

// Runs against the session's dummy Xorg: DUMMY0 1920x1080 primary at 0,0 and DUMMY1 2560x1440
// at 1920,0, both with 60 Hz modes and no EDID of their own.
namespace orlet::x11 {
namespace {

class RandrDisplayInfoTest : public ::testing::Test {
 protected:
  test::XcbTestConnection x;
  RandrDisplayInfo info{x.x()};
  xcb_randr_output_t main = x.output("DUMMY0");
  xcb_randr_output_t second = x.output("DUMMY1");
  xcb_randr_output_t unplugged = x.output("DUMMY7");
};

TEST_F(RandrDisplayInfoTest, BareOutputsAreNamedByConnectorWithoutSizeOrProfile) {
  ASSERT_NE(main, XCB_NONE);
  test::XcbTestConnection::setMillimeters("DUMMY0", 0, 0);
  EXPECT_EQ(info.screen(main), (ScreenDescription{"DUMMY0", 60, std::nullopt}));
  EXPECT_EQ(info.physicalSizeMillimeters(main), (Size{0, 0}));
  EXPECT_EQ(info.pixelEncoding(main), "R8G8B8");
  EXPECT_EQ(info.bounds(main), (Rect{0, 0, 1920, 1080}));
  // The popover of a bare output: no inches line.
  EXPECT_EQ(displayDetailedInfo(getScreenInfo(info, main), 1920, 1080),
            "DUMMY0\n1920 × 1080\n16/9\n60 Hz\n8-bit");
}

TEST_F(RandrDisplayInfoTest, MonitorFactsComeFromEdidSizeAndProfile) {
  ASSERT_NE(second, XCB_NONE);
  x.setBytes(second, "EDID", test::edidNaming("ORLET Studio"));
  x.setBytes(second, "_ICC_PROFILE", test::iccProfileDescribed("Display P3", true));
  test::XcbTestConnection::setMillimeters("DUMMY1", 597, 336);
  EXPECT_EQ(info.screen(second), (ScreenDescription{"ORLET Studio", 60, "Display P3"}));
  EXPECT_EQ(info.physicalSizeMillimeters(second), (Size{597, 336}));
  EXPECT_EQ(info.bounds(second), (Rect{1920, 0, 2560, 1440}));
  EXPECT_EQ(getScreenInfo(info, second),
            (ScreenInfo{"ORLET Studio", 60, "Display P3", "8-bit", 27}));
}

TEST_F(RandrDisplayInfoTest, SwitchedOffOrUnknownDisplaysHaveNoScreen) {
  for (const std::uint32_t id : {std::uint32_t{unplugged}, std::uint32_t{0x7fffffff}}) {
    EXPECT_EQ(info.screen(id), std::nullopt) << id;
    EXPECT_EQ(info.pixelEncoding(id), std::nullopt) << id;
    EXPECT_TRUE(info.bounds(id).isEmpty()) << id;
    EXPECT_EQ(getScreenInfo(info, id), ScreenInfo{}) << id;
  }
}

TEST(X11ScreenCapturePermission, GrantedOnX11RefusedOnWaylandWithOneExplanation) {
  test::XcbTestConnection x;
  test::VirtualScheduler scheduler;
  std::ostringstream diagnostics;
  X11ScreenCapturePermission x11(x.x(), SessionKind::x11, scheduler, {}, diagnostics);
  EXPECT_TRUE(x11.preflight());
  std::optional<bool> answer;
  x11.request([&](bool granted) { answer = granted; });
  scheduler.runUntilIdle();
  EXPECT_EQ(answer, true);
  EXPECT_EQ(diagnostics.str(), "");

  X11ScreenCapturePermission wayland(x.x(), SessionKind::wayland, scheduler, {}, diagnostics);
  EXPECT_FALSE(wayland.preflight());
  wayland.request([&](bool granted) { answer = granted; });
  scheduler.runUntilIdle();
  EXPECT_EQ(answer, false);
  const std::string said = diagnostics.str();
  EXPECT_NE(said.find("Wayland"), std::string::npos);
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
}

}  // namespace
}  // namespace orlet::x11
