#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/Subscription.h"

namespace orlet::test {

// The observers registered with a fake port. Each stays until its Subscription goes away, as
// with the real adapters.
template <class Signature>
class FakeHandlerList {
 public:
  using Handler = std::function<Signature>;

  Subscription add(Handler handler) {
    const auto id = state_->nextId++;
    state_->entries.push_back({id, std::make_shared<Handler>(std::move(handler))});
    return Subscription([weak = std::weak_ptr<State>(state_), id] {
      if (auto state = weak.lock()) {
        std::erase_if(state->entries, [id](const Entry& e) { return e.id == id; });
      }
    });
  }

  // The handlers registered now, safe to call while handlers add or remove others.
  std::vector<std::shared_ptr<Handler>> snapshot() const {
    std::vector<std::shared_ptr<Handler>> handlers;
    for (const auto& entry : state_->entries) handlers.push_back(entry.handler);
    return handlers;
  }

  bool empty() const { return state_->entries.empty(); }

 private:
  struct Entry {
    std::uint64_t id;
    std::shared_ptr<Handler> handler;
  };
  struct State {
    std::vector<Entry> entries;
    std::uint64_t nextId = 1;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace orlet::test
