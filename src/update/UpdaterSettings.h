#pragma once

#include <string>

#include "foundation/UserDefaults.h"

namespace orlet {

struct UpdaterSettings {
  std::string feedUrl;         // the appcast, https
  std::string publicKey;       // the publisher's Ed25519 key, base64
  std::string runningVersion;  // this build's version
  std::string systemVersion;   // the distribution's release, compared with minimum versions
};

// The feed and key chosen when ORLET was built, unless the settings file names others under
// the update framework's keys "SUFeedURL" and "SUPublicEDKey".
UpdaterSettings withOverrides(UpdaterSettings builtIn, const UserDefaults& defaults);

}  // namespace orlet
