#include <gtest/gtest.h>

#include "settings/EditorOptions.h"
#include "support/FakePlatform.h"

namespace orlet {
namespace {

using test::FakePlatform;

// Installed photo applications by name, then what runs and is not among them (ORLET itself
// excepted), then a chosen application that is neither any more, kept by its name.
TEST(EditorOptions, InstalledPhotoApplicationsThenRunningOnesThenTheChosenOne) {
  FakePlatform platform;
  platform.workspace.installed = {
      {"RawTherapee", "rawtherapee", "rawtherapee", {"Graphics", "Photography"}},
      {"Text Editor", "org.gnome.TextEditor", "text-editor", {"Utility"}},
      {"darktable", "org.darktable.darktable", "darktable", {"Graphics"}},
      {"Firefox", "firefox", "firefox", {"Network"}},
      {"ORLET", "orlet", "orlet", {"Graphics", "Photography"}},
  };
  platform.launch("darktable", 200);
  platform.launch("Firefox", 300);
  const std::vector<EditorOption> automatic = {
      {"darktable", "darktable"}, {"RawTherapee", "rawtherapee"}, {"Firefox", "firefox"}};
  EXPECT_EQ(editorOptions(platform.workspace, EditorRule{}), automatic);

  auto withChosen = automatic;
  withChosen.push_back({"Capture One 23", ""});
  EXPECT_EQ(editorOptions(platform.workspace, EditorRule::chosen("Capture One 23")), withChosen);
  EXPECT_EQ(editorOptions(platform.workspace, EditorRule::chosen("FIREFOX")), automatic);
}

// The choice is in the settings file the moment it is made; a blank saved name is no choice.
TEST(EditorOptions, TheChoiceIsSavedAtOnceAndABlankOneIsAutomatic) {
  FakePlatform platform;
  int changes = 0;
  const auto subscription = platform.editorChoice.observe([&] { ++changes; });
  platform.editorChoice.choose("GIMP");
  EXPECT_EQ(platform.defaults.string("editorName"), "GIMP");
  EXPECT_EQ(EditorChoice(platform.defaults).rule(), EditorRule::chosen("GIMP"));
  platform.defaults.set("editorName", "  ");
  EXPECT_TRUE(EditorChoice(platform.defaults).rule().isAutomatic());
  EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace orlet
