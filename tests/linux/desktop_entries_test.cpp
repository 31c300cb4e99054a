#include "linux/x11/DesktopEntries.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace orlet::x11 {
namespace {

namespace fs = std::filesystem;

class DesktopEntriesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() / ("orlet-desktop-entries-" + std::to_string(getpid()));
    fs::remove_all(root_);
  }
  void TearDown() override { fs::remove_all(root_); }

  void write(const std::string& dir, const std::string& file, const std::string& text) {
    const auto path = root_ / dir / "applications" / file;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }
  DesktopEntries entries(const std::string& locale = "C") {
    return DesktopEntries({root_ / "home", root_ / "system"}, locale);
  }

  fs::path root_;
};

TEST_F(DesktopEntriesTest, MatchesTheWindowClassByStartupWmClassThenByFileName) {
  write("system", "com.captureone.CaptureOne.desktop",
        "[Desktop Entry]\nType=Application\nName=Capture One 23\nStartupWMClass=CaptureOne\n");
  write("system", "kde/org.kde.dolphin.desktop",
        "[Desktop Entry]\nType=Application\nName=Dolphin\n");
  write("system", "gimp.desktop", "[Desktop Entry]\nType=Application\nName=GIMP\n");
  auto e = entries();

  const auto editor = e.find("captureone", "CaptureOne");
  ASSERT_TRUE(editor);
  EXPECT_EQ(editor->name, "Capture One 23");
  EXPECT_EQ(editor->id, "com.captureone.CaptureOne");
  EXPECT_EQ(e.find("dolphin", "dolphin")->id, "kde-org.kde.dolphin");  // last part, any case
  EXPECT_EQ(e.find("gimp-2.10", "Gimp")->name, "GIMP");
  EXPECT_FALSE(e.find("xterm", "XTerm"));
}

// The user's own entries hide the system's (also to remove one with Hidden=true); Name follows
// the locale; files added later are found without a restart.
TEST_F(DesktopEntriesTest, FollowsPrecedenceLocaleAndLaterInstalls) {
  write("system", "editor.desktop",
        "[Desktop Entry]\nType=Application\nName=Editor\nName[fr]=Éditeur\n"
        "Name[fr_CA]=Éditeur (Canada)\n");
  write("system", "gone.desktop", "[Desktop Entry]\nType=Application\nName=Gone\n");
  write("home", "gone.desktop", "[Desktop Entry]\nType=Application\nName=Gone\nHidden=true\n");
  write("system", "link.desktop", "[Desktop Entry]\nType=Link\nName=Web\n");

  EXPECT_EQ(entries("fr_FR.UTF-8").find("editor", "Editor")->name, "Éditeur");
  EXPECT_EQ(entries("fr_CA.UTF-8").find("editor", "Editor")->name, "Éditeur (Canada)");
  EXPECT_EQ(entries("C").find("editor", "Editor")->name, "Editor");
  auto e = entries();
  EXPECT_FALSE(e.find("gone", "Gone"));
  EXPECT_FALSE(e.find("link", "Link"));

  write("home", "late.desktop", "[Desktop Entry]\nType=Application\nName=Late Comer\n");
  // Directory times have a coarse resolution on some file systems: move this one's on.
  fs::last_write_time(
      root_ / "home" / "applications",
      fs::last_write_time(root_ / "home" / "applications") + std::chrono::seconds(2));
  EXPECT_EQ(e.find("late", "Late")->name, "Late Comer");
}

TEST(DesktopEntryParse, ReadsOnlyTheMainGroupAndUnescapes) {
  std::istringstream text(
      "# comment\n[Desktop Entry]\nType = Application\nName=Two\\sWords\n"
      "[Desktop Action new]\nName=Not this one\n");
  const auto entry = DesktopEntries::parse(text, "two", "C");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name, "Two Words");
}

}  // namespace
}  // namespace orlet::x11
