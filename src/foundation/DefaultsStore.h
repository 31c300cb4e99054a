#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>

namespace orlet {

// What a defaults backend holds for a key. A text backend may hand back every value as a string;
// UserDefaults' lookups interpret it.
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string>;

// Persistent key-value storage behind UserDefaults. Every write is meant to reach the backing
// store promptly: nothing is saved at quit.
class DefaultsStore {
 public:
  virtual ~DefaultsStore() = default;
  virtual std::optional<DefaultsValue> value(const std::string& key) const = 0;
  virtual void setValue(const std::string& key, const DefaultsValue& value) = 0;
  virtual void removeValue(const std::string& key) = 0;
};

// Keeps the values in memory only: the store of the tests, and the app's fallback when the
// configuration file cannot be used.
class MemoryDefaultsStore final : public DefaultsStore {
 public:
  std::optional<DefaultsValue> value(const std::string& key) const override {
    auto it = values_.find(key);
    if (it == values_.end()) return std::nullopt;
    return it->second;
  }
  void setValue(const std::string& key, const DefaultsValue& value) override {
    values_[key] = value;
  }
  void removeValue(const std::string& key) override { values_.erase(key); }

 private:
  std::map<std::string, DefaultsValue> values_;
};

}  // namespace orlet
