#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/DefaultsStore.h"

namespace orlet {

// The persisted settings, with the lookup rules of the keys that use them. A value of the wrong
// kind is treated as absent (or the documented default), never as an error.
class UserDefaults {
 public:
  explicit UserDefaults(DefaultsStore& store) : store_(store) {}

  bool hasValue(const std::string& key) const;

  // Untyped lookup of a number: counts only a value that converts to a floating-point number
  // (a number, a Boolean, or a text that is wholly a finite decimal number).
  std::optional<double> number(const std::string& key) const;

  // Absent -> false; numbers are true when non-zero; texts "true"/"yes"/"1" (any case) are true.
  bool boolean(const std::string& key) const;

  // Absent or not numeric -> 0; a floating-point value is truncated toward zero.
  std::int64_t integer(const std::string& key) const;

  // Absent -> nullopt; numbers and Booleans are given as text.
  std::optional<std::string> string(const std::string& key) const;

  void set(const std::string& key, double value);
  void set(const std::string& key, bool value);
  void set(const std::string& key, std::int64_t value);
  void set(const std::string& key, const std::string& value);
  // Without these a literal would silently pick the bool overload.
  void set(const std::string& key, const char* value) { set(key, std::string(value)); }
  void set(const std::string& key, int value) { set(key, static_cast<std::int64_t>(value)); }
  void remove(const std::string& key);

 private:
  DefaultsStore& store_;
};

}  // namespace orlet
