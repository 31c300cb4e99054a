#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orlet {

// One release offered by an update feed, as the feed states it.
struct AppcastItem {
  std::string title;
  std::string version;                     // machine version, what is compared
  std::string shortVersion;                // what the operator is shown; the version when absent
  std::string minimumSystemVersion;        // empty: any
  std::string releaseNotesLink;            // a page to open, or
  std::string description;                 // notes given inline (HTML or text)
  std::string url;                         // the archive
  std::uint64_t length = 0;                // its exact size in bytes
  std::string type;                        // its MIME type, which says how it installs
  std::vector<unsigned char> edSignature;  // Ed25519 detached signature; empty when unsigned

  const std::string& displayVersion() const {
    return shortVersion.empty() ? version : shortVersion;
  }
};

}  // namespace orlet
