#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/Subscription.h"

namespace orlet {

// Callbacks registered with an object, each until its Subscription goes away. A handler may
// subscribe or unsubscribe others while being called; one removed meanwhile is not called.
template <class... Args>
class HandlerList {
 public:
  using Handler = std::function<void(Args...)>;

  [[nodiscard]] Subscription add(Handler handler) {
    const auto id = state_->nextId++;
    state_->entries.push_back({id, std::make_shared<Handler>(std::move(handler))});
    return Subscription([weak = std::weak_ptr<State>(state_), id] {
      if (auto state = weak.lock()) {
        std::erase_if(state->entries, [id](const Entry& e) { return e.id == id; });
      }
    });
  }

  void call(Args... args) const {
    const auto state = state_;  // a handler may destroy the list's owner
    const auto snapshot = state->entries;
    for (const auto& entry : snapshot) {
      if (state->contains(entry.id)) (*entry.handler)(args...);
    }
  }

  bool empty() const { return state_->entries.empty(); }
  std::size_t size() const { return state_->entries.size(); }

 private:
  struct Entry {
    std::uint64_t id;
    std::shared_ptr<Handler> handler;
  };
  struct State {
    std::vector<Entry> entries;
    std::uint64_t nextId = 1;
    bool contains(std::uint64_t id) const {
      return std::any_of(entries.begin(), entries.end(),
                         [id](const Entry& e) { return e.id == id; });
    }
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace orlet
