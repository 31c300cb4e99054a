#include "window/EditorRule.h"

#include <array>

#include "window/TextCase.h"

namespace orlet {
namespace {

// Short names are taken only as the name's first word: "ART 1.21" is the raw developer, a
// "Pixel Art" drawing program is not.
enum class Match { anywhere, firstWord };

struct KnownEditor {
  std::string_view needle;
  Match match;
};

constexpr std::array knownEditors{
    KnownEditor{"darktable", Match::anywhere},   KnownEditor{"ansel", Match::firstWord},
    KnownEditor{"rawtherapee", Match::anywhere}, KnownEditor{"art", Match::firstWord},
    KnownEditor{"digikam", Match::anywhere},     KnownEditor{"entangle", Match::firstWord},
};

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view firstWord(std::string_view name) {
  std::size_t start = 0;
  while (start < name.size() && !isWordCharacter(name[start])) ++start;
  std::size_t end = start;
  while (end < name.size() && isWordCharacter(name[end])) ++end;
  return name.substr(start, end - start);
}

bool matches(const KnownEditor& editor, std::string_view name) {
  if (editor.match == Match::firstWord) return firstWord(name) == editor.needle;
  return name.find(editor.needle) != std::string_view::npos;
}

}  // namespace

EditorRule EditorRule::chosen(std::string_view name) {
  EditorRule rule;
  rule.chosenName_ = std::string(name);
  rule.chosenLowercased_ = lowercased(name);
  return rule;
}

bool EditorRule::matches(std::string_view lowercasedName) const {
  if (!isAutomatic()) return lowercasedName == chosenLowercased_;
  return isKnownEditor(lowercasedName);
}

bool EditorRule::isKnownEditor(std::string_view lowercasedName) {
  if (isCaptureOne(lowercasedName)) return true;
  for (const auto& editor : knownEditors) {
    if (orlet::matches(editor, lowercasedName)) return true;
  }
  return false;
}

bool EditorRule::isCaptureOne(std::string_view lowercasedName) {
  return lowercasedName.find("capture one") != std::string_view::npos;
}

}  // namespace orlet
