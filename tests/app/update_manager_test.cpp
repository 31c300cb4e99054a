#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/UpdateManagerRig.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

// A path monitor whose report comes from a thread of its own, as the real one's does.
class ThreadedMonitor final : public NetworkPathMonitor {
 public:
  explicit ThreadedMonitor(PathStatus status) : status_(status) {}
  ~ThreadedMonitor() override {
    if (thread_.joinable()) thread_.join();
  }
  void start(std::function<void(PathStatus)> handler) override {
    thread_ = std::thread([this, handler] {
      // A monitor reports again on changes until it is cancelled; only the first counts.
      for (int i = 0; i < 3 && !cancelled_; ++i) handler(status_);
    });
    thread_.join();  // done before the test looks, so the test stays deterministic
  }
  void cancel() override { cancelled_ = true; }
  std::atomic<bool> cancelled_{false};

 private:
  PathStatus status_;
  std::thread thread_;
};

struct UpdateManagerTest : ::testing::Test {
  test::VirtualScheduler scheduler;
  PathStatus status = PathStatus::satisfied;
  std::vector<std::shared_ptr<ThreadedMonitor>> monitors;
  test::UpdateManagerRig rig{
      scheduler,
      [this] { return monitors.emplace_back(std::make_shared<ThreadedMonitor>(status)); }};
  test::RecordingAlerts& alerts = rig.alerts;
  std::unique_ptr<UpdateManager>& manager = rig.manager;
};

TEST_F(UpdateManagerTest, WithoutANetworkPathTheAlertIsShownAndNoUpdaterIsMade) {
  for (PathStatus s : {PathStatus::unsatisfied, PathStatus::requiresConnection}) {
    status = s;
    alerts.shown.clear();
    manager->checkForUpdates();
    EXPECT_TRUE(alerts.shown.empty()) << "the answer waits for the main thread";
    scheduler.runUntilIdle();
    ASSERT_EQ(alerts.shown.size(), 1u) << "one report per check";
    const Alert& a = alerts.shown[0];
    EXPECT_EQ(a.messageText, "Connexion Internet requise");
    EXPECT_EQ(a.informativeText,
              "Veuillez vous connecter à Internet pour vérifier les mises à jour.");
    EXPECT_EQ(a.style, AlertStyle::warning);
    EXPECT_EQ(a.symbolName, "wifi.slash");
    EXPECT_EQ(a.buttons, std::vector<std::string>{"OK"});
    EXPECT_TRUE(monitors.back()->cancelled_);
  }
  EXPECT_EQ(rig.updatersMade, 0);
  EXPECT_FALSE(manager->hasUpdaterController());
}

TEST_F(UpdateManagerTest, TheUpdaterIsMadeWhenTheNetworkIsFirstFoundAndReused) {
  status = PathStatus::unsatisfied;
  manager->checkForUpdates();
  scheduler.runUntilIdle();
  status = PathStatus::satisfied;
  manager->checkForUpdates();
  manager->checkForUpdates();
  scheduler.runUntilIdle();
  EXPECT_EQ(rig.updatersMade, 1);
  EXPECT_EQ(rig.checks, 2);
  EXPECT_EQ(monitors.size(), 4u) << "one kept monitor, then one per check";
}

TEST_F(UpdateManagerTest, AReportArrivingAfterTheManagerIsGoneIsDropped) {
  manager->checkForUpdates();
  manager.reset();
  scheduler.runUntilIdle();
  EXPECT_EQ(rig.updatersMade, 0);
  EXPECT_TRUE(alerts.shown.empty());
}

}  // namespace
}  // namespace orlet
