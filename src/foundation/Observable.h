#pragma once

#include <functional>
#include <utility>

#include "foundation/HandlerList.h"

namespace orlet {

// A published property. Observers run before the new value is stored (they may still read the
// old one with get()) and receive the new value; every set() notifies, equal value or not.
template <class T>
class Published {
 public:
  using Observer = std::function<void(const T& newValue)>;

  Published() = default;
  explicit Published(T initial) : value_(std::move(initial)) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  const T& get() const { return value_; }
  const T& operator*() const { return value_; }
  const T* operator->() const { return &value_; }

  void set(T newValue) {
    observers_.call(newValue);
    value_ = std::move(newValue);
  }

  [[nodiscard]] Subscription observe(Observer observer) {
    return observers_.add(std::move(observer));
  }

 private:
  T value_{};
  HandlerList<const T&> observers_;
};

}  // namespace orlet
