#pragma once

#include <filesystem>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "platform/Workspace.h"

namespace orlet::x11 {

// An installed application as its desktop entry (the freedesktop desktop-entry format)
// describes it.
struct DesktopEntry {
  std::string id;    // desktop file id, e.g. "org.gnome.Nautilus" (without ".desktop")
  std::string name;  // Name, localised for the user's locale when the entry has a translation
  std::string startupWmClass;
  std::string icon;
  std::vector<std::string> categories;
  bool shownInMenus = true;  // NoDisplay entries name windows but are not offered to start
};

// Finds the desktop entry of a window's application from its WM_CLASS. The index is read on
// first use and read again when an applications directory has changed.
class DesktopEntries {
 public:
  // `dataDirs` in precedence order (an earlier directory's entry hides a later one with the
  // same id); `locale` as in $LANG, e.g. "fr_FR.UTF-8".
  DesktopEntries(std::vector<std::filesystem::path> dataDirs, std::string locale);

  // $XDG_DATA_HOME, $XDG_DATA_DIRS and the locale of the environment, with the XDG base directory
  // defaults.
  static DesktopEntries fromEnvironment();

  // The entry whose StartupWMClass equals the class (or instance), else the one whose id, or
  // the last dot-separated part of it, equals one of them ignoring case.
  std::optional<DesktopEntry> find(const std::string& instance, const std::string& className);

  // Every entry, in no particular order.
  const std::vector<DesktopEntry>& all();

  // Parses one entry; nullopt when it is not a visible application.
  static std::optional<DesktopEntry> parse(std::istream& in, const std::string& id,
                                           const std::string& locale);

 private:
  std::vector<std::filesystem::file_time_type> directoryTimes() const;
  void rebuild();

  std::vector<std::filesystem::path> applicationDirs_;
  std::string locale_;
  std::vector<DesktopEntry> entries_;
  std::vector<std::filesystem::file_time_type> indexedTimes_;
  bool indexed_ = false;
};

// The entries shown in the menus, as the workspace reports installed applications.
std::vector<InstalledApplication> installedFrom(DesktopEntries& entries);

}  // namespace orlet::x11
