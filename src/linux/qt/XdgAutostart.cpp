#include "linux/qt/XdgAutostart.h"

#include <cstdlib>
#include <fstream>

#include "linux/update/InstallLocation.h"

namespace orlet::linux_qt {

namespace fs = std::filesystem;

namespace {

// A desktop entry string value: backslashes doubled, line breaks escaped.
std::string escaped(const std::string& value) {
  std::string out;
  for (char c : value) {
    if (c == '\\')
      out += "\\\\";
    else if (c == '\n')
      out += "\\n";
    else
      out += c;
  }
  return out;
}

// Desktop entry Exec quoting: the path in double quotes, with ", `, $ and \ escaped.
std::string quoted(const std::string& path) {
  std::string out = "\"";
  for (char c : path) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') out += "\\\\";
    out += c;
  }
  return out + "\"";
}

}  // namespace

XdgAutostart XdgAutostart::forThisProcess() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  const fs::path homeDir = home ? home : "";
  const fs::path configHome = xdg && *xdg ? fs::path(xdg) : homeDir / ".config";
  const auto location = linux_update::locateThisInstall();
  std::error_code ec;
  fs::path command = fs::canonical("/proc/self/exe", ec);
  if (location.kind == linux_update::InstallLocation::Kind::userArchive)
    command = location.current() / "bin" / "orlet";  // still right after an update
  return {configHome, command};
}

bool XdgAutostart::isEnabled() const {
  std::error_code ec;
  return fs::exists(entry_, ec);
}

bool XdgAutostart::setEnabled(bool enabled) {
  std::error_code ec;
  if (!enabled) return fs::remove(entry_, ec), !ec;
  fs::create_directories(entry_.parent_path(), ec);
  std::ofstream out(entry_, std::ios::trunc);
  out << "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=ORLET\n"
         "Comment="
      << escaped(comment_)
      << "\n"
         // Once ORLET is uninstalled, the session no longer tries to start it.
         "TryExec="
      << escaped(command_.string())
      << "\n"
         "Exec="
      << quoted(command_.string())
      << "\n"
         "Icon=orlet\n"
         "Terminal=false\n"
         "X-GNOME-Autostart-enabled=true\n";
  out.close();
  return static_cast<bool>(out);
}

void XdgAutostart::setComment(std::string comment) {
  if (comment == comment_) return;
  comment_ = std::move(comment);
  if (isEnabled()) setEnabled(true);
}

}  // namespace orlet::linux_qt
