#pragma once

#include <functional>
#include <optional>
#include <string>

#include "foundation/Lifetime.h"
#include "foundation/Scheduler.h"
#include "foundation/Subscription.h"
#include "platform/HttpClient.h"
#include "platform/UpdateInstaller.h"
#include "platform/UpdateUserDriver.h"
#include "update/AppcastItem.h"
#include "update/UpdaterController.h"
#include "update/UpdaterSettings.h"

namespace orlet {

// The whole update of one check: feed, offer, download, verification, installation, relaunch,
// each step shown by the driver. Nothing reaches the installer unless it matched the feed's
// length and Ed25519 signature. Main-thread only.
class SoftwareUpdater final : public UpdaterController {
 public:
  struct Ports {
    HttpClient& http;
    UpdateUserDriver& driver;
    UpdateInstaller& installer;
    Scheduler& scheduler;
  };

  SoftwareUpdater(Ports ports, UpdaterSettings settings);

  // Starts a check; while one is under way, only brings its window forward.
  void checkForUpdates() override;

 private:
  void present(UpdateScreen screen, std::function<void()> onPrimary = {},
               std::function<void()> onSecondary = {});
  void onFeed(HttpResult result);
  void offer(const AppcastItem& item);
  void download();
  void onDownloaded(HttpResult result);
  void install(const std::string& archive);
  void fail(std::string message);
  void finish();

  Ports p_;
  UpdaterSettings settings_;
  bool busy_ = false;
  std::optional<AppcastItem> item_;
  UpdateScreen screen_;
  std::function<void()> onPrimary_, onSecondary_;
  Subscription request_;
  Lifetime lifetime_;
};

}  // namespace orlet
