#include "settings/EditorChoice.h"

namespace orlet {
namespace {

// A name of spaces alone, as a hand-edited file may hold, names no application.
bool isBlank(const std::string& name) {
  return name.find_first_not_of(" \t") == std::string::npos;
}

EditorRule ruleFor(const std::string& name) {
  return isBlank(name) ? EditorRule{} : EditorRule::chosen(name);
}

}  // namespace

EditorChoice::EditorChoice(UserDefaults& defaults)
    : defaults_(defaults), rule_(ruleFor(defaults.string(editor_defaults::name).value_or(""))) {}

void EditorChoice::choose(const std::string& name) {
  rule_ = ruleFor(name);
  defaults_.set(editor_defaults::name, rule_.chosenName());
  observers_.call();
}

}  // namespace orlet
