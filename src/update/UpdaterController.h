#pragma once

namespace orlet {

// An updater with a check-now operation that shows its own user interface.
class UpdaterController {
 public:
  virtual ~UpdaterController() = default;
  virtual void checkForUpdates() = 0;
};

}  // namespace orlet
