#include "linux/qt/QSettingsStore.h"

namespace orlet::linux_qt {

QSettingsStore::QSettingsStore(const QString& path)
    : settings_(path.isEmpty() ? std::make_unique<QSettings>(QSettings::IniFormat,
                                                             QSettings::UserScope, "orlet", "orlet")
                               : std::make_unique<QSettings>(path, QSettings::IniFormat)) {}

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
  settings_->sync();
}

void QSettingsStore::removeValue(const std::string& key) {
  settings_->remove(QString::fromStdString(key));
  settings_->sync();
}

bool QSettingsStore::isUsable() const {
  return settings_->status() == QSettings::NoError;
}

}  // namespace orlet::linux_qt
