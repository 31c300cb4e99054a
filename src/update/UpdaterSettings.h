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

// The feed and key chosen when ORLET was built; the settings file may name another feed
// ("SUFeedURL"), never another key: any program of the operator's can write that file, and the
// key alone decides what is trusted. A feed of someone else's can only offer signed releases.
UpdaterSettings withOverrides(UpdaterSettings builtIn, const UserDefaults& defaults);

}  // namespace orlet
