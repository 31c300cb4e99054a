#include "linux/update/InstallLocation.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
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

}  // namespace

bool packageOwns(const fs::path& file) {
  // The package's own list of files: a few milliseconds, asked only of /usr/bin/orlet.
  FILE* list = ::popen("dpkg-query -L orlet 2>/dev/null", "r");
  if (!list) return false;
  bool owned = false;
  char line[4096];
  while (std::fgets(line, sizeof line, list))
    owned = owned || std::string_view(line) == file.string() + "\n";
  ::pclose(list);
  return owned;
}

InstallLocation locateInstall(const fs::path& executable, const fs::path& home,
                              const std::function<bool(const fs::path&)>& ownedByPackage) {
  InstallLocation location;
  location.root = home / ".local" / "lib" / "orlet";
  const fs::path exe = canonicalOr(executable);
  if (!home.empty() && isInside(exe, canonicalOr(location.versions())))
    location.kind = InstallLocation::Kind::userArchive;
  else if (exe == "/usr/bin/orlet" && ownedByPackage(exe))
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
