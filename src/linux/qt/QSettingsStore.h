#pragma once

#include <QSettings>
#include <memory>
#include <ostream>

#include "foundation/DefaultsStore.h"

namespace orlet::linux_qt {

// User defaults in an INI file under $XDG_CONFIG_HOME (QSettings' user scope). The file is text,
// so values come back as strings; UserDefaults interprets them.
//
// Every change is written at once and as a whole: a new file beside the old one, flushed to disk,
// then renamed over it, so a crash or a power cut leaves either the old file or the new one,
// never a mix. When the file or its folder cannot be written, the old file stays as it was, the
// values are kept in memory for this session and written with the next change that can be, and
// `diagnostics` is told once (and again once writing works again). A file with a malformed line
// keeps the values that could be read, is saved again without that line, and `diagnostics` is
// told once.
class QSettingsStore final : public DefaultsStore {
 public:
  // `path` empty: the standard location for this organisation and application.
  explicit QSettingsStore(std::ostream& diagnostics, const QString& path = {});

  std::optional<DefaultsValue> value(const std::string& key) const override;
  void setValue(const std::string& key, const DefaultsValue& value) override;
  void removeValue(const std::string& key) override;

  // Where the values live, and whether that file can be read and written.
  QString fileName() const { return settings_->fileName(); }
  bool isUsable() const;

 private:
  static void removeEmptyLock(const QString& lockPath);
  void recoverReadableValues();
  void write();
  void report(bool failed);

  std::ostream& diagnostics_;
  std::unique_ptr<QSettings> settings_;
  bool writeFailed_ = false;
};

}  // namespace orlet::linux_qt
