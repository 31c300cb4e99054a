#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

// Decoders for what X11 keeps about a monitor as raw bytes; no X connection needed.
namespace orlet::x11 {

// The monitor-name descriptor (tag 0xFC) of an EDID base block, trimmed; nullopt when the block
// is not an EDID or names no monitor.
std::optional<std::string> edidMonitorName(std::span<const std::uint8_t> edid);

// The profile description ('desc' tag: ICC v2 text or v4 multi-localised Unicode, first
// record) of an ICC profile, as UTF-8; nullopt when absent or malformed.
std::optional<std::string> iccProfileDescription(std::span<const std::uint8_t> profile);

// A pixel-encoding text from a visual's channel masks, one letter and bit count per channel
// ("R8G8B8", "R10G10B10"); "P" and the depth for visuals without channel masks.
std::string pixelEncodingText(std::uint32_t redMask, std::uint32_t greenMask,
                              std::uint32_t blueMask, int depth);

// Vertical refresh in hertz of a mode line, rounded; 0 when the timings are unknown.
// Interlaced modes show two fields per frame, double-scanned modes draw every line twice.
int modeRefreshRate(std::uint32_t dotClock, std::uint32_t htotal, std::uint32_t vtotal,
                    bool interlaced, bool doubleScan);

}  // namespace orlet::x11
