#pragma once

#include "app/SharedInstance.h"

namespace orlet {

// Target of the status menu's "Paramètres…" and "Mise à jour…" entries. It reaches the settings
// and update controllers only when an entry is chosen, so neither exists before that.
class AppMenuActions {
 public:
  static AppMenuActions& shared() { return SharedInstance<AppMenuActions>::get(); }

  void openSettings() const;
  void checkForUpdates() const;
};

}  // namespace orlet
