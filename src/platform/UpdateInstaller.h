#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orlet {

// Puts a verified release in place of the running one. Only ever given bytes that passed
// verification.
class UpdateInstaller {
 public:
  virtual ~UpdateInstaller() = default;

  // The MIME type of the archives this installation takes ("application/gzip" for a per-user
  // archive, the Debian package type for a system package); empty when ORLET runs from a place
  // it cannot update (a build folder).
  virtual std::string archiveType() const = 0;

  // False where the system's package manager brings new versions (a Debian package): the check
  // then only says that one exists and installs nothing itself.
  virtual bool installsItself() const { return true; }

  // Installs `archive` as `version`; `done` gets nullopt on success or what went wrong, on the
  // main thread.
  virtual void install(std::string_view archive, const std::string& version,
                       std::function<void(std::optional<std::string> error)> done) = 0;

  // Starts the installed version and ends this process.
  virtual void relaunch() = 0;
};

}  // namespace orlet
