#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "update/AppcastItem.h"

namespace orlet {

// An update feed: an RSS channel whose items carry the update framework's attributes
// (sparkle:version, sparkle:shortVersionString, sparkle:minimumSystemVersion,
// sparkle:releaseNotesLink or description, enclosure url/length/type/sparkle:edSignature).
struct Appcast {
  std::vector<AppcastItem> items;     // the well-formed items, in feed order
  std::vector<std::string> rejected;  // why each malformed item was left out
  std::string error;                  // not empty: the document itself is unusable
};

// Never guesses: an item with a missing or unreadable version, enclosure URL, length or
// signature is rejected whole, and a document that is not well-formed XML with an RSS channel
// gives no items at all.
Appcast parseAppcast(std::string_view xml);

// The newest item that is newer than `running`, installs as `type`, and whose minimum system
// version `system` meets (an unknown system, empty, meets every minimum).
std::optional<AppcastItem> selectUpdate(const std::vector<AppcastItem>& items,
                                        std::string_view running, std::string_view system,
                                        std::string_view type);

}  // namespace orlet
