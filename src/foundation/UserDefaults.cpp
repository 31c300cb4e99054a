#include "foundation/UserDefaults.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <sstream>

namespace orlet {
namespace {

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  const auto last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

std::optional<double> parseNumber(const std::string& text) {
  const auto t = trimmed(text);
  if (t.empty()) return std::nullopt;
  double result = 0;
  const auto* begin = t.data();
  const auto* end = t.data() + t.size();
  if (*begin == '+') ++begin;
  auto [ptr, ec] = std::from_chars(begin, end, result);
  if (ec != std::errc() || ptr != end || !std::isfinite(result)) return std::nullopt;
  return result;
}

std::string lowercase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

struct NumberOf {
  std::optional<double> operator()(bool v) const { return v ? 1.0 : 0.0; }
  std::optional<double> operator()(std::int64_t v) const { return static_cast<double>(v); }
  std::optional<double> operator()(double v) const {
    return std::isfinite(v) ? std::optional(v) : std::nullopt;
  }
  std::optional<double> operator()(const std::string& v) const {
    const auto lower = lowercase(trimmed(v));
    if (lower == "true") return 1.0;
    if (lower == "false") return 0.0;
    return parseNumber(v);
  }
};

}  // namespace

bool UserDefaults::hasValue(const std::string& key) const {
  return store_.value(key).has_value();
}

std::optional<double> UserDefaults::number(const std::string& key) const {
  const auto value = store_.value(key);
  if (!value) return std::nullopt;
  return std::visit(NumberOf{}, *value);
}

bool UserDefaults::boolean(const std::string& key) const {
  const auto value = store_.value(key);
  if (!value) return false;
  if (const auto* text = std::get_if<std::string>(&*value)) {
    const auto lower = lowercase(trimmed(*text));
    if (lower == "yes") return true;
  }
  const auto n = std::visit(NumberOf{}, *value);
  return n && *n != 0.0;
}

std::int64_t UserDefaults::integer(const std::string& key) const {
  const auto n = number(key);
  if (!n) return 0;
  constexpr double limit = 9.2e18;  // inside int64's range; larger magnitudes saturate
  return static_cast<std::int64_t>(std::clamp(*n, -limit, limit));
}

std::optional<std::string> UserDefaults::string(const std::string& key) const {
  const auto value = store_.value(key);
  if (!value) return std::nullopt;
  if (const auto* text = std::get_if<std::string>(&*value)) return *text;
  if (const auto* b = std::get_if<bool>(&*value)) return *b ? "1" : "0";
  if (const auto* i = std::get_if<std::int64_t>(&*value)) return std::to_string(*i);
  std::ostringstream out;
  out << std::get<double>(*value);
  return out.str();
}

void UserDefaults::set(const std::string& key, double value) {
  store_.setValue(key, value);
}
void UserDefaults::set(const std::string& key, bool value) {
  store_.setValue(key, value);
}
void UserDefaults::set(const std::string& key, std::int64_t value) {
  store_.setValue(key, value);
}
void UserDefaults::set(const std::string& key, const std::string& value) {
  store_.setValue(key, value);
}
void UserDefaults::remove(const std::string& key) {
  store_.removeValue(key);
}

}  // namespace orlet
