#include "settings/ShortcutNames.h"

namespace orlet {

std::string joinKeyNames(const std::set<std::string>& names) {
  std::string out;
  for (const auto& name : names) {
    if (&name != &*names.begin()) out += '+';
    for (const char c : name) {
      if (c == '+' || c == '\\') out += '\\';
      out += c;
    }
  }
  return out;
}

std::set<std::string> splitKeyNames(const std::string& text) {
  std::set<std::string> names;
  if (text.empty()) return names;
  std::string piece;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) {
      piece += text[++i];
    } else if (text[i] == '+') {
      names.insert(std::move(piece));
      piece.clear();
    } else {
      piece += text[i];
    }
  }
  names.insert(std::move(piece));
  return names;
}

}  // namespace orlet
