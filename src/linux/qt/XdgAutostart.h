#pragma once

#include <filesystem>
#include <string>

namespace orlet::linux_qt {

// Starting ORLET when the session opens, the freedesktop way: a desktop entry in
// $XDG_CONFIG_HOME/autostart (~/.config/autostart/orlet.desktop). Absent unless asked for.
class XdgAutostart {
 public:
  // `configHome` holds autostart/; `command` is what the entry runs.
  XdgAutostart(std::filesystem::path configHome, std::filesystem::path command)
      : entry_(std::move(configHome) / "autostart" / "orlet.desktop"),
        command_(std::move(command)) {}

  // From the environment: $XDG_CONFIG_HOME (else ~/.config), and the command that starts the
  // installed ORLET (the per-user installation's current version, the package's, or this
  // executable).
  static XdgAutostart forThisProcess();

  bool isEnabled() const;
  // Writes or removes the entry; false when the file system refused.
  bool setEnabled(bool enabled);
  // What the entry says ORLET is; an entry already written is written again with it.
  void setComment(std::string comment);

  const std::filesystem::path& entry() const { return entry_; }

 private:
  std::filesystem::path entry_;
  std::filesystem::path command_;
  std::string comment_ = "Miniature vivante et cliquable d'un écran, à côté de votre éditeur photo";
};

}  // namespace orlet::linux_qt
