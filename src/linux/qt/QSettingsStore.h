#pragma once

#include <QSettings>
#include <memory>

#include "foundation/DefaultsStore.h"

namespace orlet::linux_qt {

// User defaults in an INI file under $XDG_CONFIG_HOME (QSettings' user scope). The file is text,
// so values come back as strings; UserDefaults interprets them.
class QSettingsStore final : public DefaultsStore {
 public:
  // `path` empty: the standard location for this organisation and application.
  explicit QSettingsStore(const QString& path = {});

  std::optional<DefaultsValue> value(const std::string& key) const override;
  void setValue(const std::string& key, const DefaultsValue& value) override;
  void removeValue(const std::string& key) override;

  // Where the values live, and whether that file can be read and written.
  QString fileName() const { return settings_->fileName(); }
  bool isUsable() const;

 private:
  std::unique_ptr<QSettings> settings_;
};

}  // namespace orlet::linux_qt
