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

}  // namespace
}  // namespace orlet::x11test
