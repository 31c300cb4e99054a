#pragma once

#include <functional>
#include <utility>

namespace orlet {

// Keeps an observer, a monitor or a hook registered for as long as it lives; destroying it (or
// calling cancel) unregisters. Move-only so that exactly one owner decides when that happens.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      cancel();
      cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { cancel(); }

  void cancel() {
    if (auto c = std::exchange(cancel_, nullptr)) c();
  }
  bool isActive() const { return static_cast<bool>(cancel_); }

 private:
  std::function<void()> cancel_;
};

}  // namespace orlet
