#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace orlet::linux_qt {

struct SettingsCommand {
  QString program;
  QStringList arguments;
  friend bool operator==(const SettingsCommand&, const SettingsCommand&) = default;
};

// The settings application that shows privacy settings on the desktop named by
// XDG_CURRENT_DESKTOP (a colon-separated list), if `findExecutable` finds it; nullopt elsewhere.
std::optional<SettingsCommand> privacySettingsCommand(
    const QString& currentDesktop, const std::function<QString(const QString&)>& findExecutable);

// Starts that application detached from this process; does nothing when there is none.
void openPrivacySettings();

}  // namespace orlet::linux_qt
