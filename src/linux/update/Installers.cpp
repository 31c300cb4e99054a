#include "linux/update/Installers.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <fstream>

namespace orlet::linux_update {

namespace fs = std::filesystem;

namespace {

std::optional<std::string> writeFile(const fs::path& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) return "impossible d'écrire " + path.string();
  return std::nullopt;
}

// Runs `program` without blocking; `done` gets its failure in words, or nullopt.
void runProcess(QObject& context, const QString& program, const QStringList& arguments,
                std::function<void(std::optional<std::string>)> done) {
  auto* process = new QProcess(&context);
  process->setProcessChannelMode(QProcess::ForwardedChannels);
  QObject::connect(process, &QProcess::finished, process,
                   [process, done, program](int code, QProcess::ExitStatus status) {
                     process->deleteLater();
                     if (status == QProcess::NormalExit && code == 0) return done(std::nullopt);
                     done(program.toStdString() + " a échoué (code " + std::to_string(code) + ")");
                   });
  QObject::connect(process, &QProcess::errorOccurred, process,
                   [process, done, program](QProcess::ProcessError error) {
                     if (error != QProcess::FailedToStart) return;
                     process->deleteLater();
                     done(program.toStdString() + " ne peut pas être lancé");
                   });
  process->start(program, arguments);
}

// Starts `executable` on its own and ends this process once the event loop turns.
void startAndQuit(const fs::path& executable) {
  if (!QProcess::startDetached(QString::fromStdString(executable.string()), {})) return;
  QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
}

// Replaces `link` by a symbolic link to `target` in one step, as rename(2) does.
void switchLink(const fs::path& link, const fs::path& target) {
  const fs::path fresh = link.string() + ".new";
  fs::remove(fresh);
  fs::create_symlink(target, fresh);
  fs::rename(fresh, link);
}

}  // namespace

void UserArchiveInstaller::install(std::string_view archive, const std::string& version,
                                   std::function<void(std::optional<std::string>)> done) {
  std::error_code ec;
  const fs::path staging = location_.versions() / (".incoming-" + version);
  const fs::path file = location_.versions() / (".incoming-" + version + ".tar.gz");
  fs::remove_all(staging, ec);
  fs::create_directories(staging, ec);
  if (ec) return done("impossible de créer " + staging.string());
  if (auto error = writeFile(file, archive)) return done(error);
  runProcess(context_, QStringLiteral("tar"),
             {QStringLiteral("-xzf"), QString::fromStdString(file.string()), QStringLiteral("-C"),
              QString::fromStdString(staging.string()), QStringLiteral("--strip-components=1"),
              QStringLiteral("--no-same-owner")},
             [this, version, staging, file, done](std::optional<std::string> error) {
               std::error_code ignored;
               fs::remove(file, ignored);
               if (!error) error = putInPlace(version);
               if (error) fs::remove_all(staging, ignored);
               done(error);
             });
}

std::optional<std::string> UserArchiveInstaller::putInPlace(const std::string& version) {
  const fs::path staging = location_.versions() / (".incoming-" + version);
  const fs::path target = location_.versions() / version;
  if (::access((staging / "bin" / "orlet").c_str(), X_OK) != 0)
    return std::string("l'archive ne contient pas bin/orlet");
  try {
    std::error_code ec;
    const fs::path old = fs::read_symlink(location_.current(), ec);
    // Installed earlier and not relaunched since: it only waits for the relaunch.
    if (fs::canonical(location_.current(), ec) == fs::weakly_canonical(target)) {
      fs::remove_all(staging);
      return std::nullopt;
    }
    fs::remove_all(target);
    fs::rename(staging, target);
    switchLink(location_.current(), fs::path("versions") / version);
    if (!old.empty()) switchLink(location_.previous(), old);
    return std::nullopt;
  } catch (const fs::filesystem_error& error) {
    return std::string(error.what());
  }
}

void UserArchiveInstaller::relaunch() {
  startAndQuit(location_.current() / "bin" / "orlet");
}

void SystemPackageInstaller::install(std::string_view archive, const std::string& version,
                                     std::function<void(std::optional<std::string>)> done) {
  const fs::path dir = QStandardPaths::writableLocation(QStandardPaths::TempLocation).toStdString();
  const fs::path file = dir / ("orlet-" + version + "-" + std::to_string(::getpid()) + ".deb");
  if (auto error = writeFile(file, archive)) return done(error);
  runProcess(context_, QStringLiteral("pkexec"),
             {QStringLiteral("apt-get"), QStringLiteral("install"), QStringLiteral("-y"),
              QString::fromStdString(file.string())},
             [file, done](std::optional<std::string> error) {
               std::error_code ignored;
               fs::remove(file, ignored);
               done(error);
             });
}

void SystemPackageInstaller::relaunch() {
  startAndQuit("/usr/bin/orlet");
}

std::unique_ptr<UpdateInstaller> makeInstaller(const InstallLocation& location) {
  switch (location.kind) {
    case InstallLocation::Kind::userArchive:
      return std::make_unique<UserArchiveInstaller>(location);
    case InstallLocation::Kind::systemPackage:
      return std::make_unique<SystemPackageInstaller>();
    case InstallLocation::Kind::unmanaged:
      break;
  }
  return std::make_unique<NoInstaller>();
}

}  // namespace orlet::linux_update
