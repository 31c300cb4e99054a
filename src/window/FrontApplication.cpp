#include "window/FrontApplication.h"

#include "window/CaptureOneFocus.h"
#include "window/TextCase.h"

namespace orlet {

FrontApplication FrontApplication::read(const Workspace& workspace) {
  const auto front = workspace.frontmostApplication();
  FrontApplication result;
  if (front && front->localizedName) result.nameLowercased = lowercased(*front->localizedName);
  const auto frontIdentifier = front ? front->bundleIdentifier : std::nullopt;
  result.isOurs = frontIdentifier == workspace.mainBundleIdentifier();
  result.isCaptureOne = CaptureOneFocus::isCaptureOneName(result.nameLowercased);
  return result;
}

}  // namespace orlet
