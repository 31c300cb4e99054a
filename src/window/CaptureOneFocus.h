#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Workspace.h"
#include "settings/EditorChoice.h"

namespace orlet {

// The photo editor the mirror works beside, as the operator's choice (or the automatic list)
// finds it on this desktop, and the hand-back of activation to it.
class CaptureOneFocus {
 public:
  CaptureOneFocus(Workspace& workspace, const EditorChoice& choice)
      : workspace_(workspace), choice_(choice) {}
  CaptureOneFocus(const CaptureOneFocus&) = delete;
  CaptureOneFocus& operator=(const CaptureOneFocus&) = delete;

  bool isEditorName(std::string_view lowercasedName) const;
  bool isEditor(const RunningApplication& app) const;

  // The first matching application in the workspace's order.
  std::optional<RunningApplication> firstRunning() const;

  // Our panels never keep the foreground: after the operator touches one, the editor (if it
  // runs) becomes the active application again.
  void activateIfRunning() const;

  // Whether anything on this desktop can be the editor: a chosen one, or one of the automatic
  // list that is installed or running. Without one, what follows the editor cannot follow it.
  bool isEditorKnown() const;

  // How the texts name the editor: "Capture One" for any edition of it, the chosen or found
  // application's name otherwise; nullopt when none is known.
  std::optional<std::string> editorName() const;

  Workspace& workspace() const { return workspace_; }
  const EditorChoice& choice() const { return choice_; }

 private:
  std::optional<std::string> firstInstalledName() const;

  Workspace& workspace_;
  const EditorChoice& choice_;
};

}  // namespace orlet
