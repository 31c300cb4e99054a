#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace orlet {

// The process-wide instance of a long-lived controller, created on first use. The controllers
// themselves take their collaborators through their constructors; main.cpp installs a factory
// that builds them with the real adapters, and tests install fakes and reset() afterwards.
// Main-thread only.
template <class T>
class SharedInstance {
 public:
  using Factory = std::function<std::unique_ptr<T>()>;

  SharedInstance() = delete;

  // Replaces the factory; an instance that already exists is kept.
  static void setFactory(Factory factory) { state().factory = std::move(factory); }

  // Without a factory, a default-constructible type is built with its default constructor
  // (the no-op stand-ins of controllers that are not built yet).
  static T& get() {
    auto& s = state();
    if (!s.instance) s.instance = make(s.factory);
    return *s.instance;
  }

  static bool exists() { return state().instance != nullptr; }

  // Destroys the instance and forgets the factory.
  static void reset() {
    auto& s = state();
    auto doomed = std::exchange(s.instance, nullptr);
    s.factory = nullptr;
    doomed.reset();
  }

 private:
  struct State {
    Factory factory;
    std::unique_ptr<T> instance;
  };

  static State& state() {
    static State s;
    return s;
  }

  static std::unique_ptr<T> make(const Factory& factory) {
    if (factory) {
      if (auto made = factory()) return made;
    } else if constexpr (std::is_default_constructible_v<T>) {
      return std::make_unique<T>();
    }
    throw std::logic_error(std::string("no factory can build the shared ") + typeid(T).name());
  }
};

}  // namespace orlet
