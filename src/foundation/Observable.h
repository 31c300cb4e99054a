#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/Subscription.h"

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
    const auto snapshot = observers_->list;
    for (const auto& entry : snapshot) {
      if (isRegistered(entry.id)) (*entry.observer)(newValue);
    }
    value_ = std::move(newValue);
  }

  [[nodiscard]] Subscription observe(Observer observer) {
    const auto id = observers_->nextId++;
    observers_->list.push_back({id, std::make_shared<Observer>(std::move(observer))});
    return Subscription([weak = std::weak_ptr<Observers>(observers_), id] {
      if (auto observers = weak.lock()) {
        std::erase_if(observers->list, [id](const Entry& e) { return e.id == id; });
      }
    });
  }

 private:
  struct Entry {
    std::uint64_t id;
    std::shared_ptr<Observer> observer;
  };
  struct Observers {
    std::vector<Entry> list;
    std::uint64_t nextId = 1;
  };

  bool isRegistered(std::uint64_t id) const {
    for (const auto& e : observers_->list) {
      if (e.id == id) return true;
    }
    return false;
  }

  T value_{};
  std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
};

}  // namespace orlet
