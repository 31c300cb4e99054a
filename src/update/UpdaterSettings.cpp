#include "update/UpdaterSettings.h"

namespace orlet {

UpdaterSettings withOverrides(UpdaterSettings builtIn, const UserDefaults& defaults) {
  if (auto url = defaults.string("SUFeedURL"); url && !url->empty()) builtIn.feedUrl = *url;
  return builtIn;
}

}  // namespace orlet
