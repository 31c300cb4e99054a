// The update feed's parser on arbitrary bytes: it must neither crash nor hand out an item that
// breaks the promises the updater relies on.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "update/Appcast.h"
#include "update/Version.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view xml(reinterpret_cast<const char*>(data), size);
  const orlet::Appcast feed = orlet::parseAppcast(xml);
  if (!feed.error.empty()) require(feed.items.empty() && feed.rejected.empty());
  for (const auto& item : feed.items) {
    require(!item.version.empty() && item.version[0] >= '0' && item.version[0] <= '9');
    require(item.version.find('/') == std::string::npos);
    require(item.url.rfind("https://", 0) == 0);
    require(item.length > 0);
    require(!item.type.empty());
    require(item.edSignature.empty() || item.edSignature.size() == 64);
    require(orlet::compareVersions(item.version, item.version) == 0);
    for (const auto& other : feed.items)
      require(orlet::compareVersions(item.version, other.version) ==
              -orlet::compareVersions(other.version, item.version));
  }
  return 0;
}
