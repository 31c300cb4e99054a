#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "app/UpdateManager.h"

namespace orlet::test {

// Records the alerts it is asked to show; every one is answered with its first button.
class RecordingAlerts final : public AlertPresenter {
 public:
  int runModal(const Alert& alert) override {
    shown.push_back(alert);
    return 0;
  }
  std::vector<Alert> shown;
};

// An update manager over the scheduler and path monitors a test gives, counting the updaters it
// makes and the checks they are asked for.
struct UpdateManagerRig {
  UpdateManagerRig(Scheduler& scheduler,
                   std::function<std::shared_ptr<NetworkPathMonitor>()> makeMonitor)
      : manager(std::make_unique<UpdateManager>(
            UpdateManager::Ports{scheduler, alerts, std::move(makeMonitor), [this] {
                                   ++updatersMade;
                                   return std::make_unique<CountingUpdater>(checks);
                                 }})) {}

  class CountingUpdater final : public UpdaterController {
   public:
    explicit CountingUpdater(int& checks) : checks_(checks) {}
    void checkForUpdates() override { ++checks_; }

   private:
    int& checks_;
  };

  RecordingAlerts alerts;
  int updatersMade = 0, checks = 0;
  std::unique_ptr<UpdateManager> manager;
};

}  // namespace orlet::test
