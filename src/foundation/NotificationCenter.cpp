#include "foundation/NotificationCenter.h"

namespace orlet {

Subscription NotificationCenter::observe(std::string_view name, Handler handler) {
  auto it = observers_.find(name);
  if (it == observers_.end()) it = observers_.emplace(std::string(name), HandlerList<>{}).first;
  return it->second.add(std::move(handler));
}

void NotificationCenter::post(std::string_view name) {
  auto it = observers_.find(name);
  if (it != observers_.end()) it->second.call();
}

std::size_t NotificationCenter::observerCount(std::string_view name) const {
  auto it = observers_.find(name);
  return it == observers_.end() ? 0 : it->second.size();
}

}  // namespace orlet
