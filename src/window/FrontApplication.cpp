#include "window/FrontApplication.h"

#include "window/TextCase.h"

namespace orlet {

FrontApplication FrontApplication::read(const CaptureOneFocus& editor) {
  const auto& workspace = editor.workspace();
  const auto front = workspace.frontmostApplication();
  FrontApplication result;
  if (front && front->localizedName) result.nameLowercased = lowercased(*front->localizedName);
  const auto frontIdentifier = front ? front->bundleIdentifier : std::nullopt;
  result.isOurs = frontIdentifier == workspace.mainBundleIdentifier();
  result.isEditor = editor.isEditorName(result.nameLowercased);
  return result;
}

}  // namespace orlet
