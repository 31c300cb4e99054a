#include <gtest/gtest.h>

#include <sstream>

#include "XProbe.h"
#include "linux/views/DescriptorSamples.h"
#include "linux/x11/RandrDisplayInfo.h"
#include "linux/x11/X11ScreenCapturePermission.h"
#include "support/GeometryPrinters.h"
#include "support/VirtualScheduler.h"
#include "views/ScreenInfo.h"

// Runs against the session's dummy Xorg: DUMMY0 1920x1080 primary at 0,0 and DUMMY1 2560x1440
// at 1920,0, both with 60 Hz modes and no EDID of their own.
namespace orlet::x11 {
namespace {

std::unique_ptr<XConnection> connect() {
  std::string error;
  auto x = XConnection::open(nullptr, &error);
  if (!x) throw std::runtime_error(error);
  return x;
}

// The physical size the dummy driver reports for an output. The driver takes the new value when
// the outputs are probed again, which a plain xrandr query does.
void setMillimeters(const std::string& output, int width, int height) {
  const std::string command = "xrandr --output " + output + " --set WIDTH_MM " +
                              std::to_string(width) + " --set HEIGHT_MM " + std::to_string(height) +
                              " && xrandr >/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

class RandrDisplayInfoTest : public ::testing::Test {
 protected:
  x11test::XProbe probe;
  std::unique_ptr<XConnection> x = connect();
  RandrDisplayInfo info{*x};
};

TEST_F(RandrDisplayInfoTest, MonitorFactsComeFromEdidSizeAndProfileElseFromTheConnector) {
  const auto main = probe.output("DUMMY0"), second = probe.output("DUMMY1");
  ASSERT_NE(main, XCB_NONE);
  ASSERT_NE(second, XCB_NONE);
  setMillimeters("DUMMY0", 0, 0);
  EXPECT_EQ(info.screen(main), (ScreenDescription{"DUMMY0", 60, std::nullopt}));
  EXPECT_EQ(info.pixelEncoding(main), "R8G8B8");
  EXPECT_EQ(info.bounds(main), (Rect{0, 0, 1920, 1080}));
  // The popover of a bare output: no inches line.
  EXPECT_EQ(displayDetailedInfo(getScreenInfo(info, main), 1920, 1080),
            "DUMMY0\n1920 × 1080\n16/9\n60 Hz\n8-bit");

  probe.setOutputBytes(second, "EDID", test::edidNaming("ORLET Studio"));
  probe.setOutputBytes(second, "_ICC_PROFILE", test::iccProfileDescribed("Display P3", true));
  setMillimeters("DUMMY1", 597, 336);
  EXPECT_EQ(info.physicalSizeMillimeters(second), (Size{597, 336}));
  EXPECT_EQ(info.bounds(second), (Rect{1920, 0, 2560, 1440}));
  EXPECT_EQ(getScreenInfo(info, second),
            (ScreenInfo{"ORLET Studio", 60, "Display P3", "8-bit", 27}));
}

TEST_F(RandrDisplayInfoTest, SwitchedOffOrUnknownDisplaysHaveNoScreen) {
  for (const std::uint32_t id : {std::uint32_t{probe.output("DUMMY7")}, 0x7fffffffu}) {
    EXPECT_EQ(info.screen(id), std::nullopt) << id;
    EXPECT_EQ(info.pixelEncoding(id), std::nullopt) << id;
    EXPECT_TRUE(info.bounds(id).isEmpty()) << id;
  }
}

TEST(X11Permission, GrantedOnX11RefusedOnWaylandWithOneExplanation) {
  const auto x = connect();
  test::VirtualScheduler scheduler;
  std::ostringstream diagnostics;
  std::optional<bool> answer;
  X11ScreenCapturePermission x11(*x, SessionKind::x11, scheduler, {}, diagnostics);
  EXPECT_TRUE(x11.preflight());
  x11.request([&](bool granted) { answer = granted; });
  scheduler.runUntilIdle();
  EXPECT_EQ(answer, true);

  X11ScreenCapturePermission wayland(*x, SessionKind::wayland, scheduler, {}, diagnostics);
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
