#pragma once

#include <set>
#include <string>

namespace orlet {

// The saved text of a shortcut's key names: joined by "+", with "+" and "\" inside a name written
// "\+" and "\\", so that any name (the keypad plus, "+" on German and Swiss layouts) comes back
// as it was. Texts saved before, without either, read the same.
std::string joinKeyNames(const std::set<std::string>& names);

// The names of a saved text; an empty piece stays, as the empty name, which names no key.
std::set<std::string> splitKeyNames(const std::string& text);

}  // namespace orlet
