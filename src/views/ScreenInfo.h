#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/DisplayInfo.h"

namespace orlet {

// What the details popover of a display card tells about the display.
struct ScreenInfo {
  std::string name = "Écran externe";
  int refreshRate = 60;  // hertz
  std::optional<std::string> colorSpace;
  std::string colorDepth = "8-bit";
  std::optional<int> screenSizeInches;  // diagonal
  friend bool operator==(const ScreenInfo&, const ScreenInfo&) = default;
};

// "Principal" for the first listed display, "Écran N" for the others.
std::string displayName(int displayIndex);

// Collects the facts about one display, keeping the defaults above for anything unknown.
ScreenInfo getScreenInfo(const DisplayInfoProvider& provider, std::uint32_t displayId);

// "27"" from a diagonal of 685.8 mm; nullopt unless both dimensions are positive.
std::optional<int> diagonalInches(Size millimeters);

// "10-bit", "16-bit", "Float (HDR)" or "8-bit" from a pixel-encoding text.
std::string colorDepthLabel(const std::string& pixelEncoding);

// The popover text: name, diagonal, pixel size, shape, refresh, colour space, depth, one per
// line, leaving out the lines that are unknown.
std::string displayDetailedInfo(const ScreenInfo& info, std::int64_t width, std::int64_t height);

}  // namespace orlet
