#pragma once

#include <optional>
#include <string_view>

#include "platform/Workspace.h"

namespace orlet {

// Recognises the photo editor the mirror works beside and hands activation back to it. An
// application is the editor when its name, lower-cased, contains "capture one"; identifiers are
// never consulted, so every edition and version of the editor counts.
class CaptureOneFocus {
 public:
  CaptureOneFocus() = delete;

  static bool isCaptureOneName(std::string_view lowercasedName);
  static bool isCaptureOne(const RunningApplication& app);

  // The first matching application in the workspace's order.
  static std::optional<RunningApplication> firstRunning(const Workspace& workspace);

  // Our panels never keep the foreground: after the operator touches one, the editor (if it
  // runs) becomes the active application again.
  static void activateIfRunning(Workspace& workspace);
};

}  // namespace orlet
