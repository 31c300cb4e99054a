#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "platform/Workspace.h"
#include "support/FakeWindowServer.h"

namespace orlet::test {

// The desktop's applications. Bringing one to the front raises its windows in the window server
// and tells the did-activate observers, at once, as a real desktop does when the user clicks it;
// activating the application already in front changes nothing.
class FakeWorkspace final : public Workspace {
 public:
  explicit FakeWorkspace(FakeWindowServer& server) : server_(server) {}

  std::optional<RunningApplication> frontmostApplication() const override { return front_; }
  std::vector<RunningApplication> runningApplications() const override { return running_; }
  // Brings a running application to the front; anything else is ignored.
  void activate(const RunningApplication& app) override;
  std::optional<std::string> mainBundleIdentifier() const override { return ourIdentifier_; }
  Subscription observeDidActivateApplication(std::function<void()> handler) override {
    return didActivate_.add(std::move(handler));
  }

  void setOurIdentifier(std::optional<std::string> identifier) {
    ourIdentifier_ = std::move(identifier);
  }
  // Adds to the end of the running list.
  void launch(const RunningApplication& app) { running_.push_back(app); }
  // `app` becomes the front application (running or not), if it is not already.
  void bringToFront(const RunningApplication& app);
  // No application is active any more (the last active window closed).
  void clearFront();

 private:
  void notifyDidActivate() const;

  FakeWindowServer& server_;
  std::vector<RunningApplication> running_;
  std::optional<RunningApplication> front_;
  std::optional<std::string> ourIdentifier_;
  HandlerList<> didActivate_;
};

}  // namespace orlet::test
