#pragma once

#include <optional>
#include <string>

namespace orlet {

// The texts that name the editor. Each reads exactly as it always has where the editor is
// Capture One, names the chosen or found editor otherwise, and speaks of "your photo editor"
// while none is known.
namespace editor_texts {

std::string pinToolTip(const std::optional<std::string>& editorName);
// What ORLET is, in one line: the command line's help and the session's start-up entry.
std::string description(const std::optional<std::string>& editorName);

}  // namespace editor_texts
}  // namespace orlet
