#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QSslCertificate>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Session.h"
#include "linux/qt/QtScheduler.h"
#include "linux/update/InstallLocation.h"
#include "linux/update/Installers.h"
#include "linux/update/QtHttpClient.h"
#include "support/FakeUpdates.h"
#include "update/SoftwareUpdater.h"

namespace orlet {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using x11test::eventually;
using x11test::Process;
using Step = UpdateScreen::Step;

std::string read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void write(const fs::path& path, const std::string& text, bool executable = false) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
  if (executable) ::chmod(path.c_str(), 0755);
}

void sh(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

std::string output(const std::string& command) {
  std::string out;
  if (FILE* p = ::popen(command.c_str(), "r")) {
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, p)) > 0;) out.append(buffer, n);
    ::pclose(p);
  }
  while (!out.empty() && out.back() == '\n') out.pop_back();
  return out;
}

// A per-user installation of version 0.1.0 in a HOME of the test's own, an HTTPS server with a
// certificate authority of its own, and the release tool's key and feed for a version 0.2.0
// whose program, once started, writes which version it is.
class UpdaterOverHttps : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "updater_https_test";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance()) new QCoreApplication(argc, argv);
  }

  void SetUp() override {
    dir = fs::temp_directory_path() / ("orlet-update-" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir / "www");
    home = dir / "home";
    location =
        linux_update::locateInstall(home / ".local/lib/orlet/versions/0.1.0/bin/orlet", home);
    write(location.versions() / "0.1.0/bin/orlet",
          "#!/bin/sh\necho 0.1.0 >\"" + (dir / "started").string() + "\"\n", true);
    fs::create_directory_symlink("versions/0.1.0", location.current());
    installer = std::make_unique<linux_update::UserArchiveInstaller>(location);
    sh(std::string(ORLET_UPDATE_TEST_DIR "/make-ca.sh ") + dir.string());
    makeArchive("0.2.0", dir / "www/orlet-0.2.0-Linux.tar.gz");
    key = dir / "key.pem";
    publicKey = output(ORLET_RELEASE_SCRIPT " keygen " + key.string());
    server = std::make_unique<Process>(
        std::vector<std::string>{"python3", ORLET_UPDATE_TEST_DIR "/https_server.py",
                                 (dir / "www").string(), (dir / "server.pem").string(),
                                 (dir / "server.key").string(), (dir / "port").string()},
        std::map<std::string, std::string>{}, (dir / "server.log").string());
    ASSERT_TRUE(eventually([&] { return fs::exists(dir / "port"); }, 10s)) << server->output();
    base = "https://127.0.0.1:" + read(dir / "port");
  }

  void TearDown() override {
    server.reset();
    fs::remove_all(dir);
  }

  void makeArchive(const std::string& version, const fs::path& archive) {
    const fs::path top = dir / "build" / ("orlet-" + version + "-Linux");
    // The relaunched program says which version it is and which ORLET it was told it replaces.
    write(
        top / "bin/orlet",
        "#!/bin/sh\necho " + version + " $ORLET_REPLACES >\"" + (dir / "started").string() + "\"\n",
        true);
    write(top / "share/orlet/version", version + "\n");
    sh("tar -czf " + archive.string() + " -C " + (dir / "build").string() + " " +
       top.filename().string());
  }

  // The release tool's feed for `archive` (in www/), served as appcast.xml after `edit`.
  void publish(const fs::path& archive, const std::function<void(std::string&)>& edit = {},
               const fs::path& signingKey = {}) {
    std::string feed = output(std::string(ORLET_RELEASE_SCRIPT) + " appcast " +
                              (signingKey.empty() ? key : signingKey).string() + " " + base + " " +
                              archive.string());
    if (edit) edit(feed);
    write(dir / "www/appcast.xml", feed);
  }

  // Runs a whole check on the real event loop, pressing "Installer" when offered.
  void check() {
    QList<QSslCertificate> authority =
        QSslCertificate::fromPath(QString::fromStdString((dir / "ca.pem").string()));
    linux_update::QtHttpClient http(authority, transferTimeoutMs);
    SoftwareUpdater updater({http, driver, *installer, scheduler},
                            {base + "/appcast.xml", publicKey, "0.1.0", "12"});
    updater.checkForUpdates();
    const auto settled = [&] {
      const Step s = driver.screen.step;
      return s == Step::available || s == Step::upToDate || s == Step::failed || s == Step::ready;
    };
    const auto turn = [] { QCoreApplication::processEvents(QEventLoop::AllEvents, 20); };
    ASSERT_TRUE(eventually(settled, 20s, turn)) << driver.screen.title;
    if (driver.screen.step != Step::available) return;
    driver.press("Installer");
    ASSERT_TRUE(
        eventually([&] { return settled() && driver.screen.step != Step::available; }, 20s, turn))
        << driver.screen.title;
    if (driver.screen.step == Step::ready) driver.press("Relancer");
  }

  // The installation as it was before the check.
  void expectUntouched(const char* why) {
    EXPECT_EQ(fs::read_symlink(location.current()), "versions/0.1.0") << why;
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(location.versions()))
      names.push_back(e.path().filename());
    EXPECT_EQ(names, std::vector<std::string>{"0.1.0"}) << why;
    EXPECT_FALSE(fs::exists(location.previous())) << why;
  }

  int transferTimeoutMs = 30000;
  fs::path dir, home, key;
  std::string publicKey, base;
  linux_update::InstallLocation location;
  std::unique_ptr<Process> server;
  linux_qt::QtScheduler scheduler;
  test::FakeUpdateDriver driver;
  std::unique_ptr<linux_update::UserArchiveInstaller> installer;
};

TEST_F(UpdaterOverHttps, ANewerSignedVersionIsInstalledBesideTheOldOneAndRelaunched) {
  ASSERT_EQ(location.kind, linux_update::InstallLocation::Kind::userArchive);
  publish(dir / "www/orlet-0.2.0-Linux.tar.gz");
  check();
  ASSERT_EQ(driver.screen.step, Step::ready) << driver.screen.message;
  const std::string started = "0.2.0 " + std::to_string(::getpid()) + "\n";
  ASSERT_TRUE(eventually([&] { return read(dir / "started") == started; }, 10s))
      << read(dir / "started");
  EXPECT_EQ(fs::read_symlink(location.current()), "versions/0.2.0");
  EXPECT_EQ(fs::read_symlink(location.previous()), "versions/0.1.0");
  EXPECT_TRUE(fs::exists(location.versions() / "0.1.0/bin/orlet")) << "kept until confirmed";

  // The new version has started: the old one goes, the new one stays.
  linux_update::pruneReplacedVersion(location, location.versions() / "0.2.0/bin/orlet");
  EXPECT_FALSE(fs::exists(location.versions() / "0.1.0"));
  EXPECT_FALSE(fs::exists(location.previous()));
  EXPECT_TRUE(fs::exists(location.current() / "bin/orlet"));
}

TEST_F(UpdaterOverHttps, EveryFaultyUpdateIsRefusedAndLeavesTheInstallationUntouched) {
  const fs::path good = dir / "www/orlet-0.2.0-Linux.tar.gz";
  const std::string genuine = read(good);
  const fs::path strangerKey = dir / "stranger.pem";
  output(ORLET_RELEASE_SCRIPT " keygen " + strangerKey.string());
  const auto replace = [](std::string from, std::string to) {
    return [from, to](std::string& feed) {
      const auto at = feed.find(from);
      ASSERT_NE(at, std::string::npos) << from;
      feed.replace(at, from.size(), to);
    };
  };
  const auto tamper = [&] {
    std::string bytes = genuine;
    bytes[bytes.size() / 2] ^= 0x20;
    write(good, bytes);
  };
  const auto length = std::to_string(genuine.size());
  makeArchive("0.0.9", dir / "www/orlet-0.0.9-Linux.tar.gz");
  transferTimeoutMs = 1000;
  const struct {
    const char* why;
    std::function<void()> prepare;
    const char* says;
  } cases[] = {
      {"tampered archive", [&] { publish(good), tamper(); }, "signature de la mise à jour"},
      {"wrong length",
       [&] { publish(good, replace("length=\"" + length, "length=\"" + length + "1")); },
       "le serveur annonce"},
      {"missing signature", [&] { publish(good, replace("sparkle:edSignature=", "x=")); },
       "n'est pas signée"},
      {"foreign signature", [&] { publish(good, {}, strangerKey); }, "signature de la mise à jour"},
      {"truncated download", [&] { publish(good, replace(base + "/", base + "/truncated/")); },
       "Le téléchargement a échoué"},
      {"longer than announced",
       [&] {
         publish(good,
                 replace("length=\"" + length, "length=\"" + std::to_string(genuine.size() - 100)));
       },
       "le serveur annonce"},
      {"feed of more than a megabyte",
       [&] {
         publish(good, replace("</channel>", "</channel><!--" + std::string(3 << 19, '.') + "-->"));
       },
       "plus longue que la taille annoncée"},
      {"stalled server", [&] { publish(good, replace(base + "/", base + "/stall/")); },
       "le serveur ne répond plus"},
      {"malformed feed", [&] { publish(good, replace("</channel>", "")); }, "illisibles"},
      {"older version", [&] { publish(dir / "www/orlet-0.0.9-Linux.tar.gz"); }, "la plus récente"},
      {"old signed release offered as new",
       [&] {
         publish(dir / "www/orlet-0.0.9-Linux.tar.gz",
                 replace("<sparkle:version>0.0.9", "<sparkle:version>0.3.0"));
       },
       "contient la version « 0.0.9 »"},
  };
  for (const auto& c : cases) {
    write(good, genuine);
    c.prepare();
    check();
    EXPECT_NE(driver.screen.message.find(c.says), std::string::npos)
        << c.why << ": " << driver.screen.message;
    expectUntouched(c.why);
    EXPECT_FALSE(fs::exists(dir / "started")) << c.why;
    if (driver.visible) driver.press(driver.screen.secondaryButton);
  }
}

// A local attacker who replaces the package between its verification and its unpacking (played
// by a stand-in tar that swaps every archive file it is given) gets nothing unpacked of theirs.
TEST_F(UpdaterOverHttps, WhatIsUnpackedIsWhatWasVerified) {
  makeArchive("6.6.6", dir / "attacker.tar.gz");
  write(dir / "bin/tar",
        "#!/bin/sh\nfor a in \"$@\"; do case \"$a\" in *.tar.gz) cp \"" +
            (dir / "attacker.tar.gz").string() + "\" \"$a\";; esac; done\nexec /bin/tar \"$@\"\n",
        true);
  const std::string path = std::getenv("PATH");
  ::setenv("PATH", ((dir / "bin").string() + ":" + path).c_str(), 1);
  publish(dir / "www/orlet-0.2.0-Linux.tar.gz");
  check();
  ::setenv("PATH", path.c_str(), 1);
  ASSERT_EQ(driver.screen.step, Step::ready) << driver.screen.message;
  EXPECT_EQ(read(location.current() / "share/orlet/version"), "0.2.0\n");
}

// When the new version is in place but the old one cannot be remembered, the window says what
// is true: the new version is what starts next.
TEST_F(UpdaterOverHttps, AnInstallWhoseOldVersionCannotBeRememberedIsStillInstalled) {
  write(location.root / "previous.new/in-the-way", "");
  publish(dir / "www/orlet-0.2.0-Linux.tar.gz");
  check();
  EXPECT_EQ(driver.screen.step, Step::ready) << driver.screen.message;
  EXPECT_EQ(fs::read_symlink(location.current()), "versions/0.2.0");
}

// Only the package's own /usr/bin/orlet takes the Debian package's updates; a copy installed
// elsewhere under /usr (cmake --install) is not offered them.
TEST(InstallLocation, OnlyThePackagesOwnProgramIsTheSystemPackage) {
  using Kind = linux_update::InstallLocation::Kind;
  const auto packaged = [](const fs::path& file) { return file == "/usr/bin/orlet"; };
  const auto unpackaged = [](const fs::path&) { return false; };
  EXPECT_EQ(linux_update::locateInstall("/usr/bin/orlet", "/nonexistent", packaged).kind,
            Kind::systemPackage);
  EXPECT_EQ(linux_update::locateInstall("/usr/local/bin/orlet", "/nonexistent", packaged).kind,
            Kind::unmanaged);
  EXPECT_EQ(linux_update::locateInstall("/usr/bin/orlet", "/nonexistent", unpackaged).kind,
            Kind::unmanaged);
  EXPECT_FALSE(linux_update::packageOwns("/usr/local/bin/orlet"));
}

}  // namespace
}  // namespace orlet
