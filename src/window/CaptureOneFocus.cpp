#include "window/CaptureOneFocus.h"

#include "window/TextCase.h"

namespace orlet {

bool CaptureOneFocus::isCaptureOneName(std::string_view lowercasedName) {
  return lowercasedName.find("capture one") != std::string_view::npos;
}

bool CaptureOneFocus::isCaptureOne(const RunningApplication& app) {
  return isCaptureOneName(lowercased(app.localizedName.value_or("")));
}

std::optional<RunningApplication> CaptureOneFocus::firstRunning(const Workspace& workspace) {
  for (const auto& app : workspace.runningApplications()) {
    if (isCaptureOne(app)) return app;
  }
  return std::nullopt;
}

void CaptureOneFocus::activateIfRunning(Workspace& workspace) {
  if (const auto editor = firstRunning(workspace)) workspace.activate(*editor);
}

}  // namespace orlet
