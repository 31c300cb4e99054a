#include "app/AppMenuActions.h"

#include "app/UpdateManager.h"
#include "settings/SettingsWindowController.h"

namespace orlet {

void AppMenuActions::openSettings() const {
  SettingsWindowController::shared().showSettings();
}

void AppMenuActions::checkForUpdates() const {
  UpdateManager::shared().checkForUpdates();
}

}  // namespace orlet
