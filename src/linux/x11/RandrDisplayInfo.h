#pragma once

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <optional>
#include <string>
#include <vector>

#include "linux/x11/XConnection.h"
#include "platform/DisplayInfo.h"

namespace orlet::x11 {

// Display facts from RandR 1.5: a display is identified by its monitor's output XID. Names come
// from the EDID monitor-name descriptor else the connector, sizes from the output, refresh from
// the current mode, the colour space from the output's ICC profile (_ICC_PROFILE, as colour
// managers set it), the pixel encoding from the root visual, which every monitor shares on X11.
class RandrDisplayInfo final : public DisplayInfoProvider {
 public:
  // `x` must outlive this object.
  explicit RandrDisplayInfo(const XConnection& x);

  Size physicalSizeMillimeters(std::uint32_t displayId) const override;
  std::optional<ScreenDescription> screen(std::uint32_t displayId) const override;
  std::optional<std::string> pixelEncoding(std::uint32_t displayId) const override;
  Rect bounds(std::uint32_t displayId) const override;

 private:
  std::optional<Rect> activeMonitorGeometry(xcb_randr_output_t output) const;
  std::vector<std::uint8_t> outputProperty(xcb_randr_output_t output, const char* name) const;
  int currentRefreshRate(xcb_randr_crtc_t crtc) const;
  bool hasCurrentMode(xcb_randr_output_t output) const;

  const XConnection& x_;
  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
};

}  // namespace orlet::x11
