#pragma once

#include "linux/x11/DesktopEntries.h"
#include "platform/Workspace.h"

namespace orlet::x11 {

// The desktop's applications as its launcher entries alone tell them, for what runs before (or
// without) a display: nothing is running, nothing is in front, nothing can be activated.
class InstalledApplicationsOnly final : public Workspace {
 public:
  explicit InstalledApplicationsOnly(DesktopEntries entries) : entries_(std::move(entries)) {}

  std::optional<RunningApplication> frontmostApplication() const override { return std::nullopt; }
  std::vector<RunningApplication> runningApplications() const override { return {}; }
  std::vector<InstalledApplication> installedApplications() const override {
    return installedFrom(entries_);
  }
  void activate(const RunningApplication&) override {}
  std::optional<std::string> mainBundleIdentifier() const override { return std::nullopt; }
  Subscription observeDidActivateApplication(std::function<void()>) override { return {}; }

 private:
  mutable DesktopEntries entries_;
};

}  // namespace orlet::x11
