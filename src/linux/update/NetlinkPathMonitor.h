#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "platform/NetworkPathMonitor.h"

namespace orlet::linux_update {

// Whether the kernel routes traffic off this machine: a default route (IPv4 or IPv6, main table)
// whose interface is up and running. nullopt when the routing table cannot be read.
std::optional<bool> hasDefaultRoute();

// One report per start, made on a thread of its own: the desktop's network information when it
// knows (`desktopAnswer`, read on the main thread at start), the routing table otherwise.
class NetlinkPathMonitor final : public NetworkPathMonitor {
 public:
  explicit NetlinkPathMonitor(std::optional<PathStatus> desktopAnswer = std::nullopt)
      : desktopAnswer_(desktopAnswer) {}

  void start(std::function<void(PathStatus)> pathUpdateHandler) override;
  void cancel() override { cancelled_->store(true); }

 private:
  std::optional<PathStatus> desktopAnswer_;
  std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace orlet::linux_update
