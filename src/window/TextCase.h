#pragma once

#include <string>
#include <string_view>

namespace orlet {

// Lower-cases UTF-8 text: ASCII letters and the accented capitals of Latin-1 (À..Þ). Other bytes,
// including every other multi-byte sequence, are copied unchanged, so the result stays valid
// UTF-8 whatever the input.
std::string lowercased(std::string_view utf8);

}  // namespace orlet
