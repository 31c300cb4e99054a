#pragma once

#include <filesystem>
#include <string>

namespace orlet::linux_update {

// How the running ORLET was installed, told by where its executable lies.
struct InstallLocation {
  enum class Kind { userArchive, systemPackage, unmanaged };
  Kind kind = Kind::unmanaged;
  // The per-user installation (~/.local/lib/orlet): versions/<v>/ side by side, `current` and
  // `previous` links to two of them.
  std::filesystem::path root;

  std::filesystem::path versions() const { return root / "versions"; }
  std::filesystem::path current() const { return root / "current"; }
  std::filesystem::path previous() const { return root / "previous"; }
};

// The per-user archive's versions, or the Debian package's own /usr/bin/orlet (as dpkg's list of
// the package's files in `dpkgInfo` says); anything else, a copy from `cmake --install` in
// /usr/local included, is unmanaged.
InstallLocation locateInstall(const std::filesystem::path& executable,
                              const std::filesystem::path& home,
                              const std::filesystem::path& dpkgInfo = "/var/lib/dpkg/info");

// The running executable and $HOME of this process.
InstallLocation locateThisInstall();

// Called once the new version has started: the version it replaced is no longer needed, and
// leftovers of interrupted installations go too. Never removes the running version.
void pruneReplacedVersion(const InstallLocation& location, const std::filesystem::path& executable);

}  // namespace orlet::linux_update
