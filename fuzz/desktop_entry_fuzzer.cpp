// An installed desktop entry, which any package or user may have written.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "linux/x11/DesktopEntries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  (void)orlet::x11::DesktopEntries::parse(in, "com.example.Editor", "fr_FR.UTF-8");
  return 0;
}
