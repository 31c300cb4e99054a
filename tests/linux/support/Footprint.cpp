#include "Footprint.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "XProbe.h"

namespace orlet::x11test {
namespace {

int entries(const std::filesystem::path& directory) {
  std::error_code ignored;
  std::filesystem::directory_iterator it(directory, ignored);
  return static_cast<int>(std::distance(it, std::filesystem::directory_iterator{}));
}

// A "Name:   123 kB" line of /proc/<pid>/status.
long statusKb(pid_t pid, const std::string& name) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(in, line);) {
    if (line.rfind(name + ":", 0) == 0) return std::stol(line.substr(name.size() + 1));
  }
  return 0;
}

}  // namespace

Footprint footprintOf(pid_t pid, XProbe& x) {
  const std::filesystem::path proc = "/proc/" + std::to_string(pid);
  const auto resources = x.clientResources(pid);
  return {entries(proc / "task"), entries(proc / "fd"), statusKb(pid, "VmRSS"),
          statusKb(pid, "VmHWM"), resources.count,      resources.pixmapBytes};
}

std::ostream& operator<<(std::ostream& out, const Footprint& f) {
  return out << f.threads << " threads, " << f.descriptors << " descriptors, " << f.xResources
             << " X resources (" << f.xPixmapBytes / 1024 << " kB of pixmaps), resident "
             << f.residentKb << " kB (peak " << f.peakResidentKb << " kB)";
}

}  // namespace orlet::x11test
