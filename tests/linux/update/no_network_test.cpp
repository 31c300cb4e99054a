#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>

#include "Session.h"
#include "linux/qt/QtScheduler.h"
#include "linux/update/NetlinkPathMonitor.h"
#include "support/UpdateManagerRig.h"

namespace orlet {
namespace {

using namespace std::chrono_literals;

constexpr char insideVariable[] = "ORLET_TEST_INSIDE_EMPTY_NETWORK";

// Run by the test below inside a network namespace that has only its loopback interface, down.
TEST(EmptyNetworkNamespace, ChecksShowTheAlertAndMakeNoUpdater) {
  if (!std::getenv(insideVariable)) GTEST_SKIP() << "runs inside the namespace only";
  int argc = 1;
  char name[] = "no_network_test";
  char* argv[] = {name, nullptr};
  QCoreApplication app(argc, argv);
  EXPECT_EQ(linux_update::hasDefaultRoute(), false);
  linux_qt::QtScheduler scheduler;
  test::UpdateManagerRig rig(scheduler,
                             [] { return std::make_shared<linux_update::NetlinkPathMonitor>(); });
  auto& manager = *rig.manager;
  const auto& alerts = rig.alerts;
  manager.checkForUpdates();
  manager.checkForUpdates();
  EXPECT_TRUE(x11test::eventually([&] { return alerts.shown.size() == 2; }, 5s,
                                  [] { QCoreApplication::processEvents(); }));
  ASSERT_FALSE(alerts.shown.empty());
  EXPECT_EQ(alerts.shown[0].messageText, "Connexion Internet requise");
  EXPECT_EQ(rig.updatersMade, 0);
}

TEST(NoNetwork, AnEmptyNetworkNamespaceShowsTheAlertAndMakesNoUpdater) {
  if (std::system("unshare -n true 2>/dev/null") != 0)
    GTEST_SKIP() << "unshare -n is not permitted here (needs root or user namespaces)";
  const std::string self = std::filesystem::read_symlink("/proc/self/exe");
  const std::string command = std::string(insideVariable) + "=1 unshare -n " + self +
                              " --gtest_filter=EmptyNetworkNamespace.* --gtest_brief=1";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace
}  // namespace orlet
