#include "linux/update/Installers.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>
#include <cstdio>
#include <fstream>

namespace orlet::linux_update {

namespace fs = std::filesystem;

namespace {

std::string readSmallFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::string text(64, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(in.gcount()));
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text;
}

// Runs `program` without blocking, `input` on its standard input; `done` gets its failure in
// words, or nullopt.
void runProcess(QObject& context, const QString& program, const QStringList& arguments,
                std::string_view input, std::function<void(std::optional<std::string>)> done) {
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
  process->write(input.data(), static_cast<qint64>(input.size()));
  process->closeWriteChannel();
}

// Starts `executable` on its own and ends this process once the event loop turns. The new one is
// told which process it replaces, so that it waits for this one to let go of the screen.
void startAndQuit(const fs::path& executable) {
  QProcess successor;
  successor.setProgram(QString::fromStdString(executable.string()));
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("ORLET_REPLACES"), QString::number(::getpid()));
  successor.setProcessEnvironment(environment);
  if (!successor.startDetached()) return;
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
  fs::remove_all(staging, ec);
  fs::create_directories(staging, ec);
  if (ec) return done("impossible de créer " + staging.string());
  // tar reads the very bytes that were verified, from its standard input: there is no file in
  // between that anything else could replace.
  runProcess(context_, QStringLiteral("tar"),
             {QStringLiteral("-xzf"), QStringLiteral("-"), QStringLiteral("-C"),
              QString::fromStdString(staging.string()), QStringLiteral("--strip-components=1"),
              QStringLiteral("--no-same-owner")},
             archive, [this, version, staging, done](std::optional<std::string> error) {
               std::error_code ignored;
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
  // The signature covers the bytes, not the feed's version: an old signed release offered under
  // a new number is caught by the version it carries itself.
  const std::string carried = readSmallFile(staging / "share" / "orlet" / "version");
  if (carried != version)
    return "l'archive contient la version « " + carried + " » et non la version " + version +
           " annoncée : elle a été refusée";
  std::error_code ec;
  const fs::path old = fs::read_symlink(location_.current(), ec);
  try {
    // Installed earlier and not relaunched since: it only waits for the relaunch.
    if (fs::canonical(location_.current(), ec) == fs::weakly_canonical(target)) {
      fs::remove_all(staging);
      return std::nullopt;
    }
    fs::remove_all(target);
    fs::rename(staging, target);
    switchLink(location_.current(), fs::path("versions") / version);
  } catch (const fs::filesystem_error& error) {
    return std::string(error.what());
  }
  // From here the new version is what starts: a failure to remember the old one only keeps it
  // on disk, it does not undo the installation.
  try {
    if (!old.empty()) switchLink(location_.previous(), old);
  } catch (const fs::filesystem_error& error) {
    std::fprintf(stderr, "ORLET : l'ancienne version reste sur le disque (%s)\n", error.what());
  }
  return std::nullopt;
}

void UserArchiveInstaller::relaunch() {
  startAndQuit(location_.current() / "bin" / "orlet");
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
