#include "linux/update/InstallLocation.h"

#include <cstdlib>
#include <fstream>
#include <vector>

namespace orlet::linux_update {

namespace fs = std::filesystem;

namespace {

bool isInside(const fs::path& path, const fs::path& folder) {
  const auto rel = path.lexically_relative(folder);
  return !rel.empty() && *rel.begin() != "..";
}

fs::path canonicalOr(const fs::path& p) {
  std::error_code ec;
  auto c = fs::canonical(p, ec);
  return ec ? p : c;
}

bool packageOwns(const fs::path& dpkgInfo, const std::string& file) {
  std::ifstream list(dpkgInfo / "orlet.list");
  for (std::string line; std::getline(list, line);)
    if (line == file) return true;
  return false;
}

}  // namespace

InstallLocation locateInstall(const fs::path& executable, const fs::path& home,
                              const fs::path& dpkgInfo) {
  InstallLocation location;
  location.root = home / ".local" / "lib" / "orlet";
  const fs::path exe = canonicalOr(executable);
  if (!home.empty() && isInside(exe, canonicalOr(location.versions())))
    location.kind = InstallLocation::Kind::userArchive;
  else if (exe == "/usr/bin/orlet" && packageOwns(dpkgInfo, exe))
    location.kind = InstallLocation::Kind::systemPackage;
  return location;
}

InstallLocation locateThisInstall() {
  const char* home = std::getenv("HOME");
  return locateInstall("/proc/self/exe", home ? fs::path(home) : fs::path());
}

void pruneReplacedVersion(const InstallLocation& location, const fs::path& executable) {
  if (location.kind != InstallLocation::Kind::userArchive) return;
  std::error_code ec;
  const fs::path running = canonicalOr(executable);
  const fs::path current = fs::canonical(location.current(), ec);
  if (ec || !isInside(running, current)) return;  // not the version that was switched to
  const fs::path previous = fs::canonical(location.previous(), ec);
  if (!ec && previous != current && isInside(previous, canonicalOr(location.versions())))
    fs::remove_all(previous, ec);
  fs::remove(location.previous(), ec);
  std::vector<fs::path> leftovers;
  for (const auto& entry : fs::directory_iterator(location.versions(), ec))
    if (entry.path().filename().string().rfind(".incoming", 0) == 0)
      leftovers.push_back(entry.path());
  for (const auto& path : leftovers) fs::remove_all(path, ec);
}

}  // namespace orlet::linux_update
