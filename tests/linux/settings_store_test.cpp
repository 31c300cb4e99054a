#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "linux/qt/QSettingsStore.h"

namespace orlet::linux_qt {
namespace {
namespace fs = std::filesystem;

class SettingsFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "orlet-settings-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    dir_ = pattern;
    file_ = dir_ / "orlet.ini";
  }
  void TearDown() override {
    fs::permissions(dir_, fs::perms::owner_all);
    fs::remove_all(dir_);
  }

  std::string text() const {
    std::ifstream in(file_);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  QString path() const { return QString::fromStdString(file_.string()); }

  // Runs `body` in a child process (as an unprivileged user when the test runs as root, whom file
  // permissions do not stop) and returns what it wrote to its pipe.
  std::string asUser(const std::function<std::string()>& body) {
    int channel[2];
    EXPECT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    if (child == 0) {
      close(channel[0]);
      if (getuid() == 0 && setgid(65534) + setuid(65534) != 0) _exit(2);
      try {
        const auto said = body();
        _exit(write(channel[1], said.data(), said.size()) == ssize_t(said.size()) ? 0 : 3);
      } catch (...) {
        _exit(4);  // never back into the test runner from the child
      }
    }
    close(channel[1]);
    std::string said;
    char buffer[4096];
    for (ssize_t n; (n = read(channel[0], buffer, sizeof buffer)) > 0;) said.append(buffer, n);
    close(channel[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    return said;
  }

  fs::path dir_, file_;
};

// A folder that cannot be written: the saved file stays exactly as it was, the change lives on
// for the session, the operator is told once; once the folder can be written again, the next
// change writes everything.
TEST_F(SettingsFileTest, AnUnwritableFolderLeavesTheSavedFileAsItWasAndIsReported) {
  {
    std::ostringstream quiet;
    QSettingsStore(quiet, path()).setValue("buttonWindowX", std::int64_t{200});
  }
  const auto saved = text();
  ASSERT_NE(saved.find("buttonWindowX=200"), std::string::npos);
  ASSERT_EQ(chown(dir_.c_str(), 65534, 65534), 0);
  chmod(file_.c_str(), 0666);  // the file itself may be written: only the folder refuses
  chmod(dir_.c_str(), 0555);

  const auto said = asUser([&] {
    std::ostringstream diagnostics;
    QSettingsStore store(diagnostics, path());
    store.setValue("buttonWindowX", std::int64_t{300});
    store.setValue("secondaryWindowPinned", true);
    const bool keptSaved = text() == saved;
    const auto now = store.value("buttonWindowX");
    chmod(dir_.c_str(), 0755);
    store.setValue("hotkeyChars", std::string("K"));
    std::ostringstream out;
    out << keptSaved << ' ' << (now == DefaultsValue(std::int64_t{300})) << '\n'
        << diagnostics.str() << text();
    return out.str();
  });
  const std::string file = file_.string();
  EXPECT_EQ(said,
            "1 1\n"
            "orlet: les réglages ne peuvent pas être enregistrés dans " +
                file +
                " (lui ou son dossier est protégé en écriture) ; ceux déjà enregistrés restent "
                "tels quels\n"
                "orlet: les réglages sont de nouveau enregistrés dans " +
                file + "\n" +
                "[General]\nbuttonWindowX=300\nhotkeyChars=K\nsecondaryWindowPinned=true\n");
}

// One malformed line (a section never closed) made QSettings refuse the whole file: every saved
// setting was forgotten, nothing was saved again, and nothing said why. What can be read is kept,
// saving goes on, and the operator is told once.
TEST_F(SettingsFileTest, AMalformedLineLosesOnlyItselfAndIsReportedOnce) {
  std::ofstream(file_) << "[General]\nbuttonWindowX=200\nsecondaryWindowPinned=true\n"
                          "hotkeyChars=K\n[Notes\nbroken=1\n";
  std::ostringstream diagnostics;
  {
    QSettingsStore store(diagnostics, path());
    EXPECT_TRUE(store.isUsable());
    EXPECT_EQ(store.value("buttonWindowX"), DefaultsValue(std::string("200")));
    EXPECT_EQ(store.value("hotkeyChars"), DefaultsValue(std::string("K")));
    store.setValue("buttonWindowY", std::int64_t{40});
  }
  EXPECT_EQ(text(),
            "[General]\nbuttonWindowX=200\nbuttonWindowY=40\nhotkeyChars=K\n"
            "secondaryWindowPinned=true\n\n[Notes]\nbroken=1\n");
  const std::string said = diagnostics.str();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  EXPECT_NE(said.find(file_.string() + " a une ligne mal formée"), std::string::npos) << said;
  EXPECT_TRUE(fs::exists(file_.string() + ".illisible"));
}

// Every write replaces the file as a whole (a new inode renamed over the old one), so a writer
// killed at any moment leaves a complete file, and the next writer is not locked out.
TEST_F(SettingsFileTest, AWriterKilledAtAnyMomentLeavesAWholeFile) {
  const std::string tail(200000, 'x');
  for (int round = 0; round < 12; ++round) {
    int progress[2];
    ASSERT_EQ(pipe(progress), 0);
    const pid_t writer = fork();
    if (writer == 0) {
      std::ostringstream quiet;
      QSettingsStore store(quiet, path());
      for (int generation = 1;; ++generation) {
        store.setValue("payload", std::to_string(generation) + ":" + tail + ":end");
        if (write(progress[1], "w", 1) != 1) _exit(1);
      }
    }
    close(progress[1]);
    char c;
    for (int writes = 0; writes < 1 + round % 4; ++writes) ASSERT_EQ(read(progress[0], &c, 1), 1);
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    close(progress[0]);

    std::ostringstream quiet;
    QSettingsStore store(quiet, path());
    const auto payload = store.value("payload");
    ASSERT_TRUE(payload.has_value()) << "round " << round;
    const auto& value = std::get<std::string>(*payload);
    EXPECT_TRUE(value.ends_with(":" + tail + ":end")) << "round " << round << ": " << value.size();

    struct stat before {};
    ASSERT_EQ(stat(file_.c_str(), &before), 0);
    store.setValue("round", std::int64_t{round});
    struct stat after {};
    ASSERT_EQ(stat(file_.c_str(), &after), 0);
    EXPECT_NE(after.st_ino, before.st_ino) << "written in place";
    EXPECT_NE(text().find("round=" + std::to_string(round)), std::string::npos);
  }
}

}  // namespace
}  // namespace orlet::linux_qt
