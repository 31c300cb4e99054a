#pragma once

#include "app/SharedInstance.h"

namespace orlet {

// Software updates. This base checks nothing; the real updater is installed as the shared
// instance.
class UpdateManager {
 public:
  UpdateManager() = default;
  UpdateManager(const UpdateManager&) = delete;
  UpdateManager& operator=(const UpdateManager&) = delete;
  virtual ~UpdateManager() = default;

  static UpdateManager& shared() { return SharedInstance<UpdateManager>::get(); }

  // Checks that the network is reachable, then looks for a newer release.
  virtual void checkForUpdates() {}
};

}  // namespace orlet
