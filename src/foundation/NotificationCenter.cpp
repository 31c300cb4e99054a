#include "foundation/NotificationCenter.h"

#include <algorithm>

namespace orlet {

NotificationCenter::NotificationCenter() : registry_(std::make_shared<Registry>()) {}

Subscription NotificationCenter::observe(std::string_view name, Handler handler) {
  const auto id = registry_->nextId++;
  auto& list = registry_->entries[std::string(name)];
  list.push_back({id, std::make_shared<Handler>(std::move(handler))});
  // The subscription may outlive the centre; it then has nothing left to remove.
  return Subscription([weak = std::weak_ptr<Registry>(registry_), key = std::string(name), id] {
    auto registry = weak.lock();
    if (!registry) return;
    auto it = registry->entries.find(key);
    if (it == registry->entries.end()) return;
    std::erase_if(it->second, [id](const Entry& e) { return e.id == id; });
  });
}

void NotificationCenter::post(std::string_view name) {
  auto it = registry_->entries.find(name);
  if (it == registry_->entries.end()) return;
  // Observers may add or remove observers while they run: walk a snapshot, and skip any entry
  // that is no longer registered by the time its turn comes.
  const auto snapshot = it->second;
  for (const auto& entry : snapshot) {
    auto current = registry_->entries.find(name);
    if (current == registry_->entries.end()) return;
    const bool stillRegistered = std::any_of(current->second.begin(), current->second.end(),
                                             [&](const Entry& e) { return e.id == entry.id; });
    if (stillRegistered) (*entry.handler)();
  }
}

std::size_t NotificationCenter::observerCount(std::string_view name) const {
  auto it = registry_->entries.find(name);
  return it == registry_->entries.end() ? 0 : it->second.size();
}

}  // namespace orlet
