#include "foundation/UpperCase.h"

#include <optional>

namespace orlet {
namespace {

struct Decoded {
  char32_t codePoint;
  std::size_t length;
};

std::optional<Decoded> decode(std::string_view s, std::size_t at) {
  const auto lead = static_cast<unsigned char>(s[at]);
  std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 6 ? 2 : (lead >> 4) == 14 ? 3 : 0;
  if (length == 0 || at + length > s.size()) return std::nullopt;  // 4-byte forms: no letters
  char32_t cp = length == 1 ? lead : lead & (length == 2 ? 0x1f : 0x0f);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(s[at + i]);
    if ((next & 0xc0) != 0x80) return std::nullopt;
    cp = (cp << 6) | (next & 0x3f);
  }
  return Decoded{cp, length};
}

void encode(char32_t cp, std::string& out) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xc0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3f));
  } else {
    out += static_cast<char>(0xe0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3f));
    out += static_cast<char>(0x80 | (cp & 0x3f));
  }
}

// Latin Extended-A alternates upper and lower case; which of the pair comes first changes twice.
char32_t upperLatinExtendedA(char32_t cp) {
  const bool lowerIsOdd = (cp >= 0x100 && cp <= 0x137) || (cp >= 0x14a && cp <= 0x177);
  const bool lowerIsEven = (cp >= 0x139 && cp <= 0x148) || (cp >= 0x179 && cp <= 0x17e);
  if (lowerIsOdd && cp % 2 == 1) return cp - 1;
  if (lowerIsEven && cp % 2 == 0) return cp - 1;
  return cp;
}

char32_t upper(char32_t cp) {
  if (cp >= U'a' && cp <= U'z') return cp - 0x20;
  if (cp >= 0xe0 && cp <= 0xfe && cp != 0xf7) return cp - 0x20;
  if (cp == 0xff) return 0x178;
  if (cp >= 0x100 && cp <= 0x17f) return upperLatinExtendedA(cp);
  if (cp == 0x3c2) return 0x3a3;  // final sigma
  if (cp >= 0x3b1 && cp <= 0x3c9) return cp - 0x20;
  if (cp >= 0x430 && cp <= 0x44f) return cp - 0x20;
  if (cp >= 0x450 && cp <= 0x45f) return cp - 0x50;
  return cp;
}

}  // namespace

std::string upperCased(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const auto decoded = decode(utf8, at);
    if (!decoded) {
      out += utf8[at++];
      continue;
    }
    encode(upper(decoded->codePoint), out);
    at += decoded->length;
  }
  return out;
}

}  // namespace orlet
