#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "support/UpdateManagerRig.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

// A path monitor whose report comes from a thread of its own, as the real one's does, and only
// once the test lets it: a report may then arrive after whatever the test has destroyed.
class ThreadedMonitor final : public NetworkPathMonitor {
 public:
  explicit ThreadedMonitor(PathStatus status) : status_(status) {}
  ~ThreadedMonitor() override { report(); }
  void start(std::function<void(PathStatus)> handler) override {
    thread_ = std::thread([this, handler, gate = gate_.get_future()] {
      gate.wait();
      // A monitor reports again on changes until it is cancelled; only the first counts.
      for (int i = 0; i < 3 && !cancelled_; ++i) handler(status_);
    });
  }
  void cancel() override { cancelled_ = true; }
  // Lets the thread report, and waits until it has.
  void report() {
    if (!released_) gate_.set_value();
    released_ = true;
    if (thread_.joinable()) thread_.join();
  }
  std::atomic<bool> cancelled_{false};

 private:
  PathStatus status_;
  std::promise<void> gate_;
  bool released_ = false;
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

  void reportAndRun() {
    for (auto& m : monitors) m->report();
    scheduler.runUntilIdle();
  }
};

TEST_F(UpdateManagerTest, WithoutANetworkPathTheAlertIsShownAndNoUpdaterIsMade) {
  for (PathStatus s : {PathStatus::unsatisfied, PathStatus::requiresConnection}) {
    status = s;
    alerts.shown.clear();
    manager->checkForUpdates();
    monitors.back()->report();
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
  reportAndRun();
  status = PathStatus::satisfied;
  manager->checkForUpdates();
  manager->checkForUpdates();
  reportAndRun();
  EXPECT_EQ(rig.updatersMade, 1);
  EXPECT_EQ(rig.checks, 2);
  EXPECT_EQ(monitors.size(), 4u) << "one kept monitor, then one per check";
}

// Quitting while checks are under way: one report is queued when the manager goes, another comes
// once the scheduler is gone too. It must reach neither (under the sanitizers a post into the
// destroyed scheduler is a use after free).
TEST(UpdateManagerAtQuit, AReportArrivingAfterTheManagerAndTheSchedulerAreGoneReachesNothing) {
  auto scheduler = std::make_unique<test::VirtualScheduler>();
  std::vector<std::shared_ptr<ThreadedMonitor>> monitors;
  auto rig = std::make_unique<test::UpdateManagerRig>(*scheduler, [&] {
    return monitors.emplace_back(std::make_shared<ThreadedMonitor>(PathStatus::satisfied));
  });
  rig->manager->checkForUpdates();
  monitors.back()->report();  // queued on the main thread before the manager goes
  rig->manager->checkForUpdates();
  rig->manager.reset();
  scheduler->runUntilIdle();
  scheduler.reset();
  monitors.back()->report();
  EXPECT_EQ(rig->updatersMade, 0);
  EXPECT_TRUE(rig->alerts.shown.empty());
}

}  // namespace
}  // namespace orlet
