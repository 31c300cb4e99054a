#pragma once

#include <filesystem>
#include <functional>
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

// Whether the Debian package orlet owns `file`, as dpkg says.
bool packageOwns(const std::filesystem::path& file);

// The per-user archive's versions, or the Debian package's own /usr/bin/orlet (as `ownedByPackage`
// says); anything else, a copy from `cmake --install` in /usr/local included, is unmanaged.
InstallLocation locateInstall(
    const std::filesystem::path& executable, const std::filesystem::path& home,
    const std::function<bool(const std::filesystem::path&)>& ownedByPackage = packageOwns);

// The running executable and $HOME of this process.
InstallLocation locateThisInstall();

// Called once the new version has started: the version it replaced is no longer needed, and
// leftovers of interrupted installations go too. Never removes the running version.
void pruneReplacedVersion(const InstallLocation& location, const std::filesystem::path& executable);

}  // namespace orlet::linux_update
