#include "app/UpdateManager.h"

#include <utility>

namespace orlet {

UpdateManager::UpdateManager(Ports ports) : p_(std::move(ports)), monitor_(p_.makeMonitor()) {}

void UpdateManager::checkForUpdates() {
  auto monitor = p_.makeMonitor();
  // The handler holds its monitor strongly and the manager weakly; the first report cancels the
  // monitor, so only that one counts.
  monitor->start([monitor, weak = std::weak_ptr<char>(token_), this,
                  &scheduler = p_.scheduler](PathStatus status) {
    monitor->cancel();
    scheduler.async([weak, this, status] {
      if (!weak.expired()) onPath(status);
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
