#pragma once

#include <string_view>

namespace orlet {

// Orders two version strings the way update frameworks do: each is split into runs of digits,
// runs of letters and separators; numbers compare numerically, words alphabetically, and a word
// where the other has a number marks a pre-release, which sorts below the release
// ("1.0b2" < "1.0" < "1.0.1"). Returns <0, 0 or >0.
int compareVersions(std::string_view a, std::string_view b);

}  // namespace orlet
