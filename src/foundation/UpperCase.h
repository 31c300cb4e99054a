#pragma once

#include <string>
#include <string_view>

namespace orlet {

// `utf8` with the letters of the Latin, Greek and Cyrillic alphabets in upper case: the letters
// a keyboard layout types on its own. Other characters and malformed bytes are kept as they are.
std::string upperCased(std::string_view utf8);

}  // namespace orlet
