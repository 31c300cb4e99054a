#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "app/SharedInstance.h"
#include "foundation/Lifetime.h"
#include "foundation/Scheduler.h"
#include "platform/Alert.h"
#include "platform/NetworkPathMonitor.h"
#include "update/UpdaterController.h"

namespace orlet {

// Serves "Mise à jour…": each check first asks a path monitor of its own whether the network
// can be reached, then hands over to the updater, which is created only when a check first
// finds the network; without one it asks the operator to connect.
class UpdateManager {
 public:
  struct Ports {
    Scheduler& scheduler;
    AlertPresenter& alerts;
    std::function<std::shared_ptr<NetworkPathMonitor>()> makeMonitor;
    std::function<std::unique_ptr<UpdaterController>()> makeUpdaterController;
  };

  explicit UpdateManager(Ports ports);
  ~UpdateManager();
  UpdateManager(const UpdateManager&) = delete;
  UpdateManager& operator=(const UpdateManager&) = delete;

  static UpdateManager& shared() { return SharedInstance<UpdateManager>::get(); }

  // Returns at once; the outcome (the updater's window or the alert) follows on the main
  // thread once the check's monitor has reported.
  void checkForUpdates();

  bool hasUpdaterController() const { return updaterController_ != nullptr; }

 private:
  void onPath(PathStatus status);
  void showNoInternetAlert();

  Ports p_;
  // Kept, as the framework's manager keeps one, though every check makes its own.
  std::shared_ptr<NetworkPathMonitor> monitor_;
  std::unique_ptr<UpdaterController> updaterController_;
  // Reports come from a thread that may outlive the manager (a route dump still under way at
  // quit): they reach the scheduler only through this relay, which the manager closes as it goes.
  struct Relay {
    std::mutex mutex;
    Scheduler* scheduler = nullptr;
  };
  std::shared_ptr<Relay> relay_ = std::make_shared<Relay>();
};

}  // namespace orlet
