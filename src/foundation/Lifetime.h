#pragma once

#include <memory>
#include <utility>

namespace orlet {

// Deferred blocks hold their owner weakly: an object keeps a Lifetime member and wraps the
// callbacks it hands to the scheduler or to a port with guard(), which turns them into no-ops
// once the object is gone. Main-thread only.
class Lifetime {
 public:
  Lifetime() : token_(std::make_shared<char>()) {}
  Lifetime(const Lifetime&) = delete;
  Lifetime& operator=(const Lifetime&) = delete;

  template <class F>
  auto guard(F f) const {
    return [weak = std::weak_ptr<char>(token_), f = std::move(f)](auto&&... args) {
      if (!weak.expired()) f(std::forward<decltype(args)>(args)...);
    };
  }

 private:
  std::shared_ptr<char> token_;
};

}  // namespace orlet
