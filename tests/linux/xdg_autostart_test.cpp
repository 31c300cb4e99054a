#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "linux/qt/XdgAutostart.h"

namespace orlet::linux_qt {
namespace {

namespace fs = std::filesystem;

TEST(XdgAutostart, TheEntryIsWrittenOnlyWhenAskedForAndRemovedAgain) {
  const fs::path config =
      fs::temp_directory_path() / ("orlet-autostart-" + std::to_string(getpid()));
  fs::remove_all(config);
  XdgAutostart autostart(config, "/home/a b/.local/lib/orlet/current/bin/orlet");
  EXPECT_FALSE(autostart.isEnabled());
  EXPECT_FALSE(fs::exists(config / "autostart"));

  ASSERT_TRUE(autostart.setEnabled(true));
  EXPECT_TRUE(autostart.isEnabled());
  EXPECT_EQ(autostart.entry(), config / "autostart/orlet.desktop");
  autostart.setComment("Miniature vivante et cliquable d'un écran, à côté de Darktable");
  std::ifstream in(autostart.entry());
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  // Once ORLET is uninstalled, the session skips the entry instead of starting nothing.
  for (const auto* line :
       {"\nExec=\"/home/a b/.local/lib/orlet/current/bin/orlet\"\n",
        "\nTryExec=/home/a b/.local/lib/orlet/current/bin/orlet\n",
        "\nComment=Miniature vivante et cliquable d'un écran, à côté de Darktable\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << text;
  }
  if (std::system("command -v desktop-file-validate >/dev/null") == 0) {
    EXPECT_EQ(std::system(("desktop-file-validate '" + autostart.entry().string() + "'").c_str()),
              0);
  }

  ASSERT_TRUE(autostart.setEnabled(false));
  EXPECT_FALSE(autostart.isEnabled());
  EXPECT_FALSE(fs::exists(autostart.entry()));
  fs::remove_all(config);
}

}  // namespace
}  // namespace orlet::linux_qt
