#include <signal.h>

#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

// A second ORLET in the same session leaves the screen and the settings to the first, says why
// on one line and fails; once the first has gone, even killed, the next one starts.
TEST_F(OrletTest, ASecondInstanceSaysSoAndQuitsLeavingTheFirstAlone) {
  presetSettings("buttonWindowX=200\nbuttonWindowY=400\nsecondaryWindowPinned=true\n");
  startOrlet();
  const auto first = orlet_->pid();
  const auto buttonAt = rectOf(button());
  const auto windows = x_->topLevelsOf(first).size();
  const auto saved = settingsText();

  const auto second = launchOrlet();
  const auto status = second->waitForExit(15s);
  ASSERT_TRUE(status.has_value());
  EXPECT_NE(*status, 0);
  const auto said = second->output();
  EXPECT_EQ(said, "orlet: ORLET est déjà lancé sur l'écran " + session_->display() +
                      " (processus " + std::to_string(first) + ") ; celui-ci se ferme\n");
  EXPECT_TRUE(x_->topLevelsOf(second->pid()).empty());

  EXPECT_TRUE(isShown(button()));
  EXPECT_EQ(rectOf(button()), buttonAt);
  EXPECT_EQ(x_->topLevelsOf(first).size(), windows);
  EXPECT_EQ(settingsText(), saved);
  showMirror();  // the first still answers

  kill(first, SIGKILL);
  ASSERT_TRUE(orlet_->waitForExit(5s).has_value());
  startOrlet();
  EXPECT_EQ(rectOf(button()), buttonAt);
}

// An update starts the new ORLET while the old one is still quitting: the new one waits for the
// one it replaces (named by the relaunch) to let go of the screen, then takes over.
TEST_F(OrletTest, ARelaunchedOrletWaitsForTheOneItReplacesAndTakesOver) {
  startOrlet();
  const auto old = orlet_->pid();
  orletEnvironment_["ORLET_REPLACES"] = std::to_string(old);
  auto successor = launchOrlet();
  ASSERT_TRUE(
      eventually([&] { return successor->output().find("attente") != std::string::npos; }, 10s))
      << successor->output();
  EXPECT_FALSE(successor->waitForExit(0s).has_value());
  kill(old, SIGTERM);
  ASSERT_TRUE(orlet_->waitForExit(5s).has_value());
  orlet_ = std::move(successor);
  ASSERT_TRUE(eventually([&] { return isShown(button()); }, 10s)) << orlet_->output();
  EXPECT_FALSE(x_->topLevelsOf(orlet_->pid()).empty());
  EXPECT_EQ(orlet_->output(), "orlet: attente de la fin de l'ORLET remplacé (processus " +
                                  std::to_string(old) + ")\n");
}

}  // namespace
}  // namespace orlet::x11test
