#pragma once

#include <optional>
#include <string>
#include <vector>

#include "linux/capture/Xcb.h"
#include "platform/CaptureService.h"

namespace orlet::linux_capture {

// Prepares `connection` for RandR (announces version 1.5); false when the server lacks 1.5
// monitors, and then the whole screen counts as one display.
bool initRandr(const XcbConnection& connection);

// The displays as RandR 1.5 monitors, in the server's order: id = the monitor's first output,
// main = the primary one, else the one at the desktop origin. Monitors without outputs (made
// with `xrandr --setmonitor ... none`) are left out. Without RandR 1.5, the whole screen.
// nullopt with `error` set when the server refused.
std::optional<std::vector<Display>> queryDisplays(const XcbConnection& connection, bool randr15,
                                                  std::string& error);

}  // namespace orlet::linux_capture
