#pragma once

namespace orlet::shortcut_defaults {

// The saved shortcut: its key names sorted and joined (joinKeyNames), and its modifier mask.
inline constexpr char chars[] = "hotkeyChars";
inline constexpr char modifiers[] = "hotkeyModifiers";

}  // namespace orlet::shortcut_defaults
