#include "linux/update/LinuxUpdates.h"

#include <QNetworkInformation>
#include <QSslCertificate>
#include <fstream>

#include "linux/update/Installers.h"
#include "linux/update/NetlinkPathMonitor.h"
#include "linux/update/QtUpdateWindow.h"
#include "update/SoftwareUpdater.h"

namespace orlet::linux_update {

namespace {

// What the desktop's network information says, when a backend loads and already knows.
std::optional<PathStatus> desktopAnswer() {
  if (!QNetworkInformation::instance() &&
      !QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability))
    return std::nullopt;
  switch (QNetworkInformation::instance()->reachability()) {
    case QNetworkInformation::Reachability::Online:
    case QNetworkInformation::Reachability::Site:
      return PathStatus::satisfied;
    case QNetworkInformation::Reachability::Disconnected:
    case QNetworkInformation::Reachability::Local:
      return PathStatus::unsatisfied;
    case QNetworkInformation::Reachability::Unknown:
      break;
  }
  return std::nullopt;
}

// A staging server's certificate authority, trusted beside the system's: the feed and archives
// stay checked against the publisher's key whatever the connection.
QList<QSslCertificate> extraAuthorities() {
  const QByteArray path = qgetenv("ORLET_UPDATE_EXTRA_CA");
  if (path.isEmpty()) return {};
  return QSslCertificate::fromPath(QString::fromLocal8Bit(path));
}

}  // namespace

std::string systemVersion() {
  std::ifstream in("/etc/os-release");
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("VERSION_ID=", 0) != 0) continue;
    std::string value = line.substr(11);
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
      value = value.substr(1, value.size() - 2);
    return value;
  }
  return {};
}

LinuxUpdates::LinuxUpdates(Scheduler& scheduler, const UserDefaults& defaults,
                           UpdaterSettings builtIn, InstallLocation location)
    : scheduler_(scheduler),
      defaults_(defaults),
      builtIn_(std::move(builtIn)),
      http_(extraAuthorities()),
      installer_(makeInstaller(location)) {}

LinuxUpdates::~LinuxUpdates() = default;

std::unique_ptr<UpdateManager> LinuxUpdates::makeManager() {
  return std::make_unique<UpdateManager>(UpdateManager::Ports{
      scheduler_, alerts_, [] { return std::make_shared<NetlinkPathMonitor>(desktopAnswer()); },
      [this] { return makeUpdater(); }});
}

std::unique_ptr<UpdaterController> LinuxUpdates::makeUpdater() {
  if (!window_) window_ = std::make_unique<QtUpdateWindow>();
  return std::make_unique<SoftwareUpdater>(
      SoftwareUpdater::Ports{http_, *window_, *installer_, scheduler_},
      withOverrides(builtIn_, defaults_));
}

}  // namespace orlet::linux_update
