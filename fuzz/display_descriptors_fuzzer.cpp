// What other programs may put on a RandR output, read for the display details: the bytes as an
// EDID block and as an ICC profile; their first words also as a visual's channel masks and a
// mode's timings.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "linux/x11/DisplayDescriptors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  (void)orlet::x11::edidMonitorName(bytes);
  (void)orlet::x11::iccProfileDescription(bytes);
  std::uint32_t words[5] = {};
  std::memcpy(words, data, std::min(size, sizeof words));
  (void)orlet::x11::pixelEncodingText(words[0], words[1], words[2],
                                      static_cast<int>(words[3] & 0xFF));
  (void)orlet::x11::modeRefreshRate(words[0], words[1] & 0xFFFF, words[2] & 0xFFFF, words[4] & 1,
                                    words[4] & 2);
  return 0;
}
