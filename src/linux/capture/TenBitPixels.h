#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orlet::linux_capture {

// x2r10g10b10 pixels (a 30-bit root window) as the frames' 8-bit BGRX: the top eight bits of
// each channel. `source` and `target` may be the same row.
inline void narrowTenBitRow(const std::uint8_t* source, std::uint8_t* target, int width) {
  for (int x = 0; x < width; ++x) {
    std::uint32_t pixel;
    std::memcpy(&pixel, source + 4 * std::size_t(x), 4);
    const std::uint32_t narrowed = 0xFF000000u | ((pixel >> 22) & 0xFF) << 16 |
                                   ((pixel >> 12) & 0xFF) << 8 | ((pixel >> 2) & 0xFF);
    std::memcpy(target + 4 * std::size_t(x), &narrowed, 4);
  }
}

}  // namespace orlet::linux_capture
