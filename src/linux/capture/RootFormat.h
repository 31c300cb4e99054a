#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <string>

namespace orlet::linux_capture {

// Why the root window's pixels cannot be read as 32-bit BGRA, or nullopt when they can: depth
// 24 and 32 as they are, depth 30 only as x2r10g10b10 (the layout X servers give 30-bit
// TrueColor), least significant byte first, 32 bits a pixel.
std::optional<std::string> unreadableRootFormat(const xcb_setup_t& setup,
                                                const xcb_screen_t& screen);

}  // namespace orlet::linux_capture
