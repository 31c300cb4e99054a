#include "update/SoftwareUpdater.h"

#include <utility>

#include "update/Appcast.h"
#include "update/ArchiveVerification.h"
#include "update/UpdateTexts.h"

namespace orlet {

namespace texts = update_texts;

namespace {

// A feed lists a few releases: far below this.
constexpr std::uint64_t maxFeedLength = 1 << 20;

}  // namespace

SoftwareUpdater::SoftwareUpdater(Ports ports, UpdaterSettings settings)
    : p_(ports), settings_(std::move(settings)) {}

void SoftwareUpdater::checkForUpdates() {
  if (busy_) {
    p_.driver.show(screen_, onPrimary_, onSecondary_);
    return;
  }
  busy_ = true;
  item_.reset();
  if (p_.installer.archiveType().empty()) return fail(texts::notUpdatable());
  if (settings_.feedUrl.empty()) return fail(texts::noFeed(!p_.installer.installsItself()));
  present(texts::checking(), {}, [this] { finish(); });
  request_ = p_.http.get(settings_.feedUrl, maxFeedLength, {},
                         lifetime_.guard([this](HttpResult result) { onFeed(std::move(result)); }));
}

void SoftwareUpdater::present(UpdateScreen screen, std::function<void()> onPrimary,
                              std::function<void()> onSecondary) {
  screen_ = std::move(screen);
  onPrimary_ = nullptr;
  if (onPrimary) onPrimary_ = lifetime_.guard(std::move(onPrimary));
  if (!onSecondary) onSecondary = [this] { finish(); };
  onSecondary_ = lifetime_.guard(std::move(onSecondary));
  p_.driver.show(screen_, onPrimary_, onSecondary_);
}

void SoftwareUpdater::onFeed(HttpResult result) {
  request_ = {};
  if (!result.error.empty()) return fail(texts::feedUnreachable(result.error));
  const Appcast feed = parseAppcast(result.body);
  if (!feed.error.empty()) return fail(texts::feedUnreadable());
  const auto best = selectUpdate(feed.items, settings_.runningVersion, settings_.systemVersion,
                                 p_.installer.archiveType());
  if (best) return offer(*best);
  // A broken item may well have been the new release: say so rather than "up to date".
  if (!feed.rejected.empty()) return fail(texts::offerInvalid());
  present(texts::upToDate(settings_.runningVersion));
}

void SoftwareUpdater::offer(const AppcastItem& item) {
  item_ = item;
  auto screen = p_.installer.installsItself()
                    ? texts::available(item.displayVersion(), settings_.runningVersion)
                    : texts::availableFromSystem(item.displayVersion(), settings_.runningVersion);
  screen.releaseNotes = item.description;
  screen.releaseNotesLink = item.releaseNotesLink;
  if (!p_.installer.installsItself()) return present(std::move(screen));
  present(std::move(screen), [this] { download(); });
}

void SoftwareUpdater::download() {
  // Unsigned is refused before a byte is fetched; the verification checks it again.
  if (item_->edSignature.empty()) return fail(texts::refused(Verdict::unsigned_, 0, item_->length));
  present(texts::downloading(0, item_->length), {}, [this] { finish(); });
  const auto progress = lifetime_.guard([this](std::uint64_t received, std::uint64_t total) {
    if (screen_.step != UpdateScreen::Step::downloading) return;
    // A server announcing another length is not sending the archive the feed describes.
    if (total && total != item_->length)
      return fail(texts::downloadFailed("le serveur annonce " + std::to_string(total) +
                                        " octets au lieu de " + std::to_string(item_->length)));
    present(texts::downloading(received, item_->length), {}, [this] { finish(); });
  });
  request_ =
      p_.http.get(item_->url, item_->length, progress,
                  lifetime_.guard([this](HttpResult result) { onDownloaded(std::move(result)); }));
}

void SoftwareUpdater::onDownloaded(HttpResult result) {
  request_ = {};
  if (!result.error.empty()) return fail(texts::downloadFailed(result.error));
  present(texts::verifying(), {}, [] {});
  // One turn of the loop so that the operator sees the step before the work runs.
  p_.scheduler.async(lifetime_.guard([this, archive = std::move(result.body)] {
    if (busy_ && item_) install(archive);
  }));
}

void SoftwareUpdater::install(const std::string& archive) {
  const Verdict verdict = verifyArchive(archive, *item_, decodePublicKey(settings_.publicKey));
  if (verdict != Verdict::genuine)
    return fail(texts::refused(verdict, archive.size(), item_->length));
  present(texts::installing(), {}, [] {});
  p_.installer.install(
      archive, item_->version, lifetime_.guard([this](std::optional<std::string> error) {
        if (error) return fail(texts::installFailed(*error));
        present(texts::ready(item_->displayVersion()), [this] { p_.installer.relaunch(); });
      }));
}

void SoftwareUpdater::fail(std::string message) {
  request_ = {};
  present(texts::failed(std::move(message)));
}

void SoftwareUpdater::finish() {
  request_ = {};
  busy_ = false;
  item_.reset();
  p_.driver.dismiss();
}

}  // namespace orlet
