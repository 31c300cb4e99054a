#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Geometry.h"

namespace orlet {

// What the desktop knows about a screen that is switched on.
struct ScreenDescription {
  std::string localizedName;                  // the monitor's own name, else its connector's
  int maximumFramesPerSecond = 0;             // refresh rate of the current mode, rounded
  std::optional<std::string> colorSpaceName;  // absent when the screen has no named profile
  friend bool operator==(const ScreenDescription&, const ScreenDescription&) = default;
};

// Descriptive facts about one display, looked up by its 32-bit display identifier (the same
// identifier the capture service lists). Every query is answered fresh from the display server.
class DisplayInfoProvider {
 public:
  virtual ~DisplayInfoProvider() = default;

  // Physical width and height in millimetres; 0 in a dimension the display does not report.
  virtual Size physicalSizeMillimeters(std::uint32_t displayId) const = 0;

  // The switched-on screen with that identifier; nullopt when no such screen is shown.
  virtual std::optional<ScreenDescription> screen(std::uint32_t displayId) const = 0;

  // A text describing the current mode's pixel layout, in which a component depth of 10 or 16
  // bits appears as "10" or "16" and floating-point components as a lower-case "f"; nullopt when
  // the display has no current mode.
  virtual std::optional<std::string> pixelEncoding(std::uint32_t displayId) const = 0;

  // The display's rectangle in global coordinates; empty when it is not connected.
  virtual Rect bounds(std::uint32_t displayId) const = 0;
};

}  // namespace orlet
