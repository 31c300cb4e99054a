#include "app/AppMenuActions.h"

#include "app/SettingsWindowController.h"
#include "app/UpdateManager.h"

namespace orlet {

void AppMenuActions::openSettings() const {
  SettingsWindowController::shared().showSettings();
}

void AppMenuActions::checkForUpdates() const {
  UpdateManager::shared().checkForUpdates();
}

}  // namespace orlet
