#pragma once

#include <memory>
#include <string>

#include "app/UpdateManager.h"
#include "foundation/Scheduler.h"
#include "foundation/UserDefaults.h"
#include "linux/update/InstallLocation.h"
#include "linux/update/QtAlertPresenter.h"
#include "linux/update/QtHttpClient.h"
#include "platform/UpdateInstaller.h"
#include "update/UpdaterSettings.h"

namespace orlet::linux_update {

class QtUpdateWindow;

// The distribution's release (VERSION_ID of os-release), empty when unknown.
std::string systemVersion();

// The update machinery of this installation: what UpdateManager's factory builds from.
class LinuxUpdates {
 public:
  LinuxUpdates(Scheduler& scheduler, const UserDefaults& defaults, UpdaterSettings builtIn,
               InstallLocation location = locateThisInstall());
  ~LinuxUpdates();
  LinuxUpdates(const LinuxUpdates&) = delete;
  LinuxUpdates& operator=(const LinuxUpdates&) = delete;

  std::unique_ptr<UpdateManager> makeManager();

 private:
  std::unique_ptr<UpdaterController> makeUpdater();

  Scheduler& scheduler_;
  const UserDefaults& defaults_;
  UpdaterSettings builtIn_;
  QtAlertPresenter alerts_;
  QtHttpClient http_;
  std::unique_ptr<UpdateInstaller> installer_;
  std::unique_ptr<QtUpdateWindow> window_;
};

}  // namespace orlet::linux_update
