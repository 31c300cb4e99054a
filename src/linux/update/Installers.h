#pragma once

#include <QObject>
#include <memory>

#include "linux/update/InstallLocation.h"
#include "platform/UpdateInstaller.h"

namespace orlet::linux_update {

// The per-user archive: unpacked beside the installed versions, then `current` is switched to
// it in one rename(2); the version it replaced stays as `previous` until the new one has
// started (pruneReplacedVersion).
class UserArchiveInstaller final : public UpdateInstaller {
 public:
  explicit UserArchiveInstaller(InstallLocation location) : location_(std::move(location)) {}

  std::string archiveType() const override { return "application/gzip"; }
  void install(std::string_view archive, const std::string& version,
               std::function<void(std::optional<std::string>)> done) override;
  void relaunch() override;

 private:
  std::optional<std::string> putInPlace(const std::string& version);

  InstallLocation location_;
  QObject context_;
};

// The Debian package: apt brings its new versions, from the publisher's signed repository that
// the package itself declares, and checks them as root. The check only says that one exists.
class SystemPackageInstaller final : public UpdateInstaller {
 public:
  std::string archiveType() const override { return "application/vnd.debian.binary-package"; }
  bool installsItself() const override { return false; }
  void install(std::string_view, const std::string&,
               std::function<void(std::optional<std::string>)> done) override {
    done("les mises à jour du système installent ce paquet");
  }
  void relaunch() override {}
};

// A build folder or an unknown place: nothing to update.
class NoInstaller final : public UpdateInstaller {
 public:
  std::string archiveType() const override { return {}; }
  void install(std::string_view, const std::string&,
               std::function<void(std::optional<std::string>)> done) override {
    done("cette copie ne peut pas être mise à jour");
  }
  void relaunch() override {}
};

std::unique_ptr<UpdateInstaller> makeInstaller(const InstallLocation& location);

}  // namespace orlet::linux_update
