#include "linux/qt/QSettingsStore.h"

#include <QFile>
#include <QLockFile>

namespace orlet::linux_qt {

QSettingsStore::QSettingsStore(std::ostream& diagnostics, const QString& path)
    : diagnostics_(diagnostics),
      settings_(path.isEmpty() ? std::make_unique<QSettings>(QSettings::IniFormat,
                                                             QSettings::UserScope, "orlet", "orlet")
                               : std::make_unique<QSettings>(path, QSettings::IniFormat)) {
  // QSettings' default, made explicit: without it a read-only folder makes QSettings overwrite
  // the file in place, where a crash halfway leaves half a file.
  settings_->setAtomicSyncRequired(true);
  removeEmptyLock(settings_->fileName() + ".lock");
  if (settings_->status() == QSettings::FormatError) recoverReadableValues();
}

// QSettings keeps the values it could read from a file with a malformed line, but then refuses
// to write that file for good. The file is set aside, and a new one holds what could be read.
void QSettingsStore::recoverReadableValues() {
  const QString file = settings_->fileName();
  const QString aside = file + QStringLiteral(".illisible");
  QMap<QString, QVariant> readable;
  for (const auto& key : settings_->allKeys()) readable.insert(key, settings_->value(key));
  QFile::remove(aside);
  QFile::rename(file, aside);
  auto fresh = std::make_unique<QSettings>(file, QSettings::IniFormat);
  fresh->setAtomicSyncRequired(true);
  for (auto it = readable.cbegin(); it != readable.cend(); ++it) fresh->setValue(it.key(), *it);
  fresh->sync();
  settings_ = std::move(fresh);
  diagnostics_ << "orlet: " << file.toStdString()
               << " a une ligne mal formée (un nom de section sans son ']' ou une ligne qui "
                  "n'est pas clé=valeur) ; les "
               << readable.size() << " réglages lisibles sont gardés et enregistrés à nouveau, "
               << "le fichier tel qu'il était est gardé sous " << aside.toStdString() << std::endl;
}

// QSettings takes a lock file for each write. A writer killed between creating that file and
// filling it in leaves it empty, and QSettings then waits 30 s, on the main thread, before it
// calls the lock stale. A live writer fills it in at once, and one ORLET runs per session, so an
// empty lock at start-up is such a leftover. (A lock naming a process that is gone, QSettings
// clears by itself.)
void QSettingsStore::removeEmptyLock(const QString& lockPath) {
  qint64 pid = 0;
  QString host;
  QString application;
  if (QFile::exists(lockPath) && !QLockFile(lockPath).getLockInfo(&pid, &host, &application)) {
    QFile::remove(lockPath);
  }
}

std::optional<DefaultsValue> QSettingsStore::value(const std::string& key) const {
  const QVariant v = settings_->value(QString::fromStdString(key));
  if (!v.isValid()) return std::nullopt;
  switch (v.typeId()) {
    case QMetaType::Bool:
      return v.toBool();
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
      return static_cast<std::int64_t>(v.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
      return v.toDouble();
    case QMetaType::QString:
      return v.toString().toStdString();
    default:
      // A list or a binary blob someone wrote by hand: not a value of ours.
      if (v.canConvert<QString>()) return v.toString().toStdString();
      return std::nullopt;
  }
}

void QSettingsStore::setValue(const std::string& key, const DefaultsValue& value) {
  const QString k = QString::fromStdString(key);
  std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
          settings_->setValue(k, QString::fromStdString(v));
        } else if constexpr (std::is_same_v<T, std::int64_t>) {
          settings_->setValue(k, static_cast<qlonglong>(v));
        } else {
          settings_->setValue(k, v);
        }
      },
      value);
  // Written at once: nothing is saved at quit, and the process may be killed.
  write();
}

void QSettingsStore::removeValue(const std::string& key) {
  settings_->remove(QString::fromStdString(key));
  write();
}

// QSettings keeps its first error for good, and a failed sync keeps the changes in memory: after a
// failure, each write tries the whole set again through a fresh QSettings on the same file, which
// takes over once it has written.
void QSettingsStore::write() {
  settings_->sync();
  bool failed = settings_->status() != QSettings::NoError;
  if (failed && writeFailed_) {
    auto fresh = std::make_unique<QSettings>(settings_->fileName(), QSettings::IniFormat);
    fresh->setAtomicSyncRequired(true);
    for (const auto& key : fresh->allKeys()) {
      if (!settings_->contains(key)) fresh->remove(key);
    }
    for (const auto& key : settings_->allKeys()) fresh->setValue(key, settings_->value(key));
    fresh->sync();
    failed = fresh->status() != QSettings::NoError;
    if (!failed) settings_ = std::move(fresh);
  }
  report(failed);
}

void QSettingsStore::report(bool failed) {
  if (failed == writeFailed_) return;
  writeFailed_ = failed;
  const std::string file = fileName().toStdString();
  if (failed) {
    diagnostics_ << "orlet: les réglages ne peuvent pas être enregistrés dans " << file
                 << " (lui ou son dossier est protégé en écriture) ; ceux déjà enregistrés restent"
                 << " tels quels" << std::endl;
  } else {
    diagnostics_ << "orlet: les réglages sont de nouveau enregistrés dans " << file << std::endl;
  }
}

bool QSettingsStore::isUsable() const {
  return settings_->status() == QSettings::NoError;
}

}  // namespace orlet::linux_qt
