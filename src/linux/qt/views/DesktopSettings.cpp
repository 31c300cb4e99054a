#include "linux/qt/views/DesktopSettings.h"

#include <QProcess>
#include <QStandardPaths>

namespace orlet::linux_qt {

std::optional<SettingsCommand> privacySettingsCommand(
    const QString& currentDesktop, const std::function<QString(const QString&)>& findExecutable) {
  const QStringList desktops = currentDesktop.toLower().split(':', Qt::SkipEmptyParts);
  auto found = [&](const QString& program,
                   QStringList arguments) -> std::optional<SettingsCommand> {
    const QString path = findExecutable(program);
    if (path.isEmpty()) return std::nullopt;
    return SettingsCommand{path, std::move(arguments)};
  };
  for (const QString& desktop : desktops) {
    if (desktop == "gnome" || desktop == "unity" || desktop == "budgie") {
      return found("gnome-control-center", {"privacy"});
    }
    // KDE has no page for screen recording under X11; its settings open on their start page.
    if (desktop == "kde") return found("systemsettings", {});
  }
  return std::nullopt;
}

void openPrivacySettings() {
  const auto command = privacySettingsCommand(
      qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
      [](const QString& name) { return QStandardPaths::findExecutable(name); });
  if (command) QProcess::startDetached(command->program, command->arguments);
}

}  // namespace orlet::linux_qt
