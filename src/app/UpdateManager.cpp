#include "app/UpdateManager.h"

#include <utility>

namespace orlet {

UpdateManager::UpdateManager(Ports ports) : p_(std::move(ports)), monitor_(p_.makeMonitor()) {
  relay_->scheduler = &p_.scheduler;
}

UpdateManager::~UpdateManager() {
  std::lock_guard lock(relay_->mutex);
  relay_->scheduler = nullptr;
}

void UpdateManager::checkForUpdates() {
  auto monitor = p_.makeMonitor();
  // The handler holds its monitor and the relay; the first report cancels the monitor, so only
  // that one counts.
  monitor->start([monitor, relay = relay_, this](PathStatus status) {
    monitor->cancel();
    std::lock_guard lock(relay->mutex);
    if (!relay->scheduler) return;
    relay->scheduler->async([relay, this, status] {
      // On the main thread, where the manager is destroyed: no other thread clears it now.
      if (relay->scheduler) onPath(status);
    });
  });
}

void UpdateManager::onPath(PathStatus status) {
  if (status != PathStatus::satisfied) return showNoInternetAlert();
  if (!updaterController_) updaterController_ = p_.makeUpdaterController();
  updaterController_->checkForUpdates();
}

void UpdateManager::showNoInternetAlert() {
  p_.alerts.runModal({"Connexion Internet requise",
                      "Veuillez vous connecter à Internet pour vérifier les mises à jour.",
                      AlertStyle::warning,
                      "wifi.slash",
                      {"OK"}});
}

}  // namespace orlet
