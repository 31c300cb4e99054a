#pragma once

#include <string>
#include <vector>

#include "platform/Workspace.h"
#include "window/EditorRule.h"

namespace orlet {

// One application the operator can choose as the editor.
struct EditorOption {
  std::string name;
  std::string iconName;  // empty when the application has none
  friend bool operator==(const EditorOption&, const EditorOption&) = default;
};

// What "Éditeur" offers besides "Automatique": the photo applications installed (launcher
// entries in the Graphics or Photography categories) by name, then the applications running now
// that are not among them, this program excepted; last the chosen one, should it be neither
// (uninstalled since, and not running).
std::vector<EditorOption> editorOptions(const Workspace& workspace, const EditorRule& rule);

}  // namespace orlet
