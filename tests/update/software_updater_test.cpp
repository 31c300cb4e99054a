#include <gtest/gtest.h>
#include <sodium.h>

#include "support/FakeUpdates.h"
#include "support/VirtualScheduler.h"
#include "update/SoftwareUpdater.h"

namespace orlet {
namespace {

using Step = UpdateScreen::Step;

std::string base64(const unsigned char* bytes, std::size_t size) {
  std::string out(sodium_base64_ENCODED_LEN(size, sodium_base64_VARIANT_ORIGINAL), '\0');
  sodium_bin2base64(out.data(), out.size(), bytes, size, sodium_base64_VARIANT_ORIGINAL);
  out.pop_back();  // the terminating NUL
  return out;
}

// A publisher's key pair, and its signature of an archive, made as the release tool does.
struct Publisher {
  unsigned char pk[crypto_sign_PUBLICKEYBYTES], sk[crypto_sign_SECRETKEYBYTES];
  Publisher() {
    if (sodium_init() < 0) throw std::runtime_error("libsodium");
    crypto_sign_keypair(pk, sk);
  }
  std::string publicKey() const { return base64(pk, sizeof pk); }
  std::string sign(const std::string& archive) const {
    unsigned char sig[crypto_sign_BYTES];
    crypto_sign_detached(sig, nullptr, reinterpret_cast<const unsigned char*>(archive.data()),
                         archive.size(), sk);
    return base64(sig, sizeof sig);
  }
};

const std::string archive = "the archive of ORLET 1.2, signed by its publisher";

std::string feedOf(const std::string& version, const std::string& enclosure) {
  return R"(<rss xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel>)"
         "<item><sparkle:version>" +
         version + "</sparkle:version><description>Nouveautés</description><enclosure " +
         enclosure + "/></item></channel></rss>";
}

std::string enclosure(std::size_t length, const std::string& signature) {
  std::string e =
      "url=\"https://updates.example/orlet-1.2.tar.gz\" type=\"application/gzip\" "
      "length=\"" +
      std::to_string(length) + "\"";
  if (!signature.empty()) e += " sparkle:edSignature=\"" + signature + "\"";
  return e;
}

struct UpdaterTest : ::testing::Test {
  Publisher publisher;
  test::VirtualScheduler scheduler;
  test::FakeHttpClient http;
  test::FakeUpdateDriver driver;
  test::FakeInstaller installer;
  SoftwareUpdater updater{
      {http, driver, installer, scheduler},
      {"https://updates.example/appcast.xml", publisher.publicKey(), "1.1", "12"}};

  // Checks, answers with `feed`, and if an update is offered installs it with `download`.
  void run(const std::string& feed, const std::string& download = archive) {
    updater.checkForUpdates();
    scheduler.runUntilIdle();
    http.answer(feed);
    if (driver.screen.primaryButton != "Installer") return;
    driver.press("Installer");
    if (driver.screen.step != Step::downloading) return;
    http.answer(download);
    scheduler.runUntilIdle();
  }
};

TEST_F(UpdaterTest, ANewerSignedReleaseIsOfferedDownloadedVerifiedInstalledAndRelaunched) {
  updater.checkForUpdates();
  EXPECT_EQ(driver.screen.step, Step::checking);
  EXPECT_EQ(http.requests.at(0).url, "https://updates.example/appcast.xml");
  EXPECT_EQ(http.requests.at(0).maxBytes, 1u << 20) << "a feed is small";
  http.answer(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  EXPECT_EQ(driver.screen.step, Step::available);
  EXPECT_NE(driver.screen.message.find("ORLET 1.2 est disponible"), std::string::npos);
  EXPECT_EQ(driver.screen.releaseNotes, "Nouveautés");
  driver.press("Installer");
  EXPECT_EQ(http.requests.at(1).url, "https://updates.example/orlet-1.2.tar.gz");
  EXPECT_EQ(http.requests.at(1).maxBytes, archive.size()) << "no byte beyond the announced length";
  http.requests[1].progress(archive.size() / 2, archive.size());
  EXPECT_EQ(driver.screen.step, Step::downloading);
  EXPECT_NEAR(driver.screen.progress, 0.5, 0.05);
  EXPECT_EQ(driver.screen.secondaryButton, "Annuler");
  http.answer(archive);
  EXPECT_EQ(driver.screen.step, Step::verifying);
  EXPECT_FALSE(installer.installed) << "verification runs after the step is shown";
  scheduler.runUntilIdle();
  ASSERT_TRUE(installer.installed);
  EXPECT_EQ(installer.installed->first, archive);
  EXPECT_EQ(installer.installed->second, "1.2");
  EXPECT_EQ(driver.screen.step, Step::ready);
  driver.press("Relancer");
  EXPECT_TRUE(installer.relaunched);
}

TEST_F(UpdaterTest, EachRefusalSaysWhyAndInstallsNothing) {
  Publisher stranger;
  const std::string sig = publisher.sign(archive);
  std::string tampered = archive;
  tampered[4] ^= 1;
  const struct {
    const char* why;
    std::string feed, download;
    Step step;
    const char* says;
  } cases[] = {
      {"tampered", feedOf("1.2", enclosure(archive.size(), sig)), tampered, Step::failed,
       "signature de la mise à jour n'est pas valide"},
      {"foreign signature", feedOf("1.2", enclosure(archive.size(), stranger.sign(archive))),
       archive, Step::failed, "signature de la mise à jour n'est pas valide"},
      {"truncated", feedOf("1.2", enclosure(archive.size(), sig)), archive.substr(0, 10),
       Step::failed, "n'a pas la taille annoncée"},
      {"longer", feedOf("1.2", enclosure(archive.size(), sig)), archive + "x", Step::failed,
       "n'a pas la taille annoncée"},
      {"unsigned", feedOf("1.2", enclosure(archive.size(), "")), archive, Step::failed,
       "n'est pas signée"},
      {"malformed item", feedOf("1.2", enclosure(0, sig)), archive, Step::failed,
       "incomplètes ou invalides"},
      {"malformed feed", "<rss><channel><item>", archive, Step::failed, "illisibles"},
      {"older", feedOf("1.0", enclosure(archive.size(), sig)), archive, Step::upToDate,
       "la plus récente"},
      {"same", feedOf("1.1", enclosure(archive.size(), sig)), archive, Step::upToDate,
       "la plus récente"},
  };
  for (const auto& c : cases) {
    run(c.feed, c.download);
    EXPECT_FALSE(installer.installed) << c.why;
    EXPECT_EQ(driver.screen.step, c.step) << c.why;
    EXPECT_NE(driver.screen.message.find(c.says), std::string::npos)
        << c.why << ": " << driver.screen.message;
    driver.press(driver.screen.secondaryButton);
    EXPECT_FALSE(driver.visible) << c.why;
  }
}

TEST_F(UpdaterTest, UnreachableFeedFailedDownloadAndFailedInstallSayWhy) {
  updater.checkForUpdates();
  http.answer({}, "Connection refused");
  EXPECT_EQ(driver.screen.step, Step::failed);
  EXPECT_NE(driver.screen.message.find("Connection refused"), std::string::npos);
  driver.press("OK");

  run(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))), "");
  // The download above succeeded empty: refused on its length. Now one that fails outright.
  driver.press("OK");
  updater.checkForUpdates();
  http.answer(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  driver.press("Installer");
  http.answer({}, "Remote host closed the connection");
  EXPECT_NE(driver.screen.message.find("Le téléchargement a échoué"), std::string::npos);
  EXPECT_FALSE(installer.installed);
  driver.press("OK");

  // A server that announces another length is stopped at once.
  updater.checkForUpdates();
  http.answer(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  driver.press("Installer");
  http.requests.back().progress(10, archive.size() + 1);
  EXPECT_TRUE(http.requests.back().cancelled);
  EXPECT_NE(driver.screen.message.find("le serveur annonce"), std::string::npos);
  driver.press("OK");

  installer.failure = "disque plein";
  run(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  EXPECT_EQ(driver.screen.step, Step::failed);
  EXPECT_NE(driver.screen.message.find("disque plein"), std::string::npos);
}

TEST_F(UpdaterTest, CancellingTheDownloadAbortsItAndASecondCheckMeanwhileOnlyShowsTheWindow) {
  updater.checkForUpdates();
  http.answer(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  driver.press("Installer");
  updater.checkForUpdates();
  EXPECT_EQ(http.requests.size(), 2u) << "no second feed request while one update runs";
  EXPECT_EQ(driver.screen.step, Step::downloading);
  driver.press("Annuler");
  EXPECT_TRUE(http.requests[1].cancelled);
  EXPECT_FALSE(driver.visible);
  scheduler.runUntilIdle();
  EXPECT_FALSE(installer.installed);
}

TEST_F(UpdaterTest, WithoutAKeyOrOutsideAnInstallationNothingIsInstalled) {
  SoftwareUpdater keyless{{http, driver, installer, scheduler},
                          {"https://updates.example/appcast.xml", "", "1.1", "12"}};
  keyless.checkForUpdates();
  http.answer(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  driver.press("Installer");
  http.answer(archive);
  scheduler.runUntilIdle();
  EXPECT_NE(driver.screen.message.find("sans clé de vérification"), std::string::npos);
  EXPECT_FALSE(installer.installed);
  driver.press("OK");

  installer.type.clear();
  updater.checkForUpdates();
  EXPECT_EQ(driver.screen.step, Step::failed);
  EXPECT_TRUE(http.requests.size() == 2u) << "a copy that cannot be updated fetches nothing";
}

// A copy built without a channel says so in the operator's words; a Debian package's copy is
// brought new versions by the system's updates and never installs one itself.
TEST_F(UpdaterTest, WithoutAChannelOrAsADebianPackageItSaysSoInPlainWords) {
  SoftwareUpdater channelless{{http, driver, installer, scheduler},
                              {"", publisher.publicKey(), "1.1", "12"}};
  channelless.checkForUpdates();
  EXPECT_EQ(driver.screen.step, Step::failed);
  EXPECT_NE(driver.screen.message.find("sans canal de mise à jour"), std::string::npos);
  EXPECT_EQ(driver.screen.message.find("SU"), std::string::npos) << driver.screen.message;
  driver.press("OK");

  installer.fromSystem = true;
  SoftwareUpdater channellessDeb{{http, driver, installer, scheduler},
                                 {"", publisher.publicKey(), "1.1", "12"}};
  channellessDeb.checkForUpdates();
  EXPECT_NE(driver.screen.message.find("mises à jour du système"), std::string::npos);
  driver.press("OK");

  installer.type = "application/gzip";  // what the feed's items carry here
  updater.checkForUpdates();
  http.answer(feedOf("1.2", enclosure(archive.size(), publisher.sign(archive))));
  EXPECT_EQ(driver.screen.step, Step::available);
  EXPECT_NE(driver.screen.message.find("mises à jour du système"), std::string::npos);
  EXPECT_EQ(driver.screen.primaryButton, "") << "nothing to install from here";
  EXPECT_EQ(http.requests.size(), 1u);
  EXPECT_FALSE(installer.installed);
}

// Any program of the operator's can write the settings file: it may point at another feed, never
// replace the key that decides what is trusted.
TEST(UpdaterSettings, TheSettingsFileNamesAFeedButNeverTheKey) {
  MemoryDefaultsStore store;
  UserDefaults defaults(store);
  defaults.set("SUFeedURL", "https://staging.example/appcast.xml");
  defaults.set("SUPublicEDKey", "QUJD");
  const auto settings =
      withOverrides({"https://updates.example/appcast.xml", "built-in", "1.1", ""}, defaults);
  EXPECT_EQ(settings.feedUrl, "https://staging.example/appcast.xml");
  EXPECT_EQ(settings.publicKey, "built-in");
}

}  // namespace
}  // namespace orlet
