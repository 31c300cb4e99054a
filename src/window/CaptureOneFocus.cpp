#include "window/CaptureOneFocus.h"

#include "window/TextCase.h"

namespace orlet {
namespace {

std::string textName(const std::string& name) {
  return EditorRule::isCaptureOne(lowercased(name)) ? "Capture One" : name;
}

}  // namespace

bool CaptureOneFocus::isEditorName(std::string_view lowercasedName) const {
  return choice_.rule().matches(lowercasedName);
}

bool CaptureOneFocus::isEditor(const RunningApplication& app) const {
  return isEditorName(lowercased(app.localizedName.value_or("")));
}

std::optional<RunningApplication> CaptureOneFocus::firstRunning() const {
  for (const auto& app : workspace_.runningApplications()) {
    if (isEditor(app)) return app;
  }
  return std::nullopt;
}

void CaptureOneFocus::activateIfRunning() const {
  if (const auto editor = firstRunning()) workspace_.activate(*editor);
}

bool CaptureOneFocus::isEditorKnown() const {
  if (!choice_.rule().isAutomatic()) return true;
  return firstRunning() || firstInstalledName();
}

std::optional<std::string> CaptureOneFocus::editorName() const {
  const auto& rule = choice_.rule();
  if (!rule.isAutomatic()) return textName(rule.chosenName());
  if (const auto running = firstRunning(); running && running->localizedName) {
    return textName(*running->localizedName);
  }
  if (const auto installed = firstInstalledName()) return textName(*installed);
  return std::nullopt;
}

// Of several installed editors, the first by name, so that the texts do not change with the
// order in which the desktop lists them.
std::optional<std::string> CaptureOneFocus::firstInstalledName() const {
  std::optional<std::string> first;
  for (const auto& app : workspace_.installedApplications()) {
    if (isEditorName(lowercased(app.name)) && (!first || app.name < *first)) first = app.name;
  }
  return first;
}

}  // namespace orlet
