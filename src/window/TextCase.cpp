#include "window/TextCase.h"

namespace orlet {
namespace {

constexpr unsigned char latin1Lead = 0xC3;
// Second bytes of U+00C0..U+00DE; U+00D7 (×) is not a letter.
constexpr unsigned char firstCapital = 0x80;
constexpr unsigned char lastCapital = 0x9E;
constexpr unsigned char multiplicationSign = 0x97;
constexpr unsigned char caseOffset = 0x20;

bool isLatin1Capital(unsigned char lead, unsigned char next) {
  return lead == latin1Lead && next >= firstCapital && next <= lastCapital &&
         next != multiplicationSign;
}

}  // namespace

std::string lowercased(std::string_view utf8) {
  std::string result(utf8);
  for (std::size_t i = 0; i < result.size(); ++i) {
    const auto byte = static_cast<unsigned char>(result[i]);
    if (byte >= 'A' && byte <= 'Z') {
      result[i] = static_cast<char>(byte + caseOffset);
    } else if (i + 1 < result.size() &&
               isLatin1Capital(byte, static_cast<unsigned char>(result[i + 1]))) {
      result[i + 1] = static_cast<char>(static_cast<unsigned char>(result[i + 1]) + caseOffset);
      ++i;
    }
  }
  return result;
}

}  // namespace orlet
