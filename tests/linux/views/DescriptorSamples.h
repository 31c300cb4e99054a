#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orlet::test {

// A 128-byte EDID base block whose second descriptor names the monitor `name` (up to 13
// characters) and whose first is a detailed timing, as real monitors have them.
inline std::vector<std::uint8_t> edidNaming(const std::string& name) {
  std::vector<std::uint8_t> edid(128, 0);
  const std::uint8_t header[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
  std::copy(std::begin(header), std::end(header), edid.begin());
  edid[54] = 0x02;  // a detailed timing: non-zero pixel clock
  edid[55] = 0x3A;
  edid[72 + 3] = 0xFC;
  for (std::size_t i = 0; i < 13; ++i) {
    edid[72 + 5 + i] = i < name.size() ? name[i] : (i == name.size() ? 0x0A : 0x20);
  }
  return edid;
}

inline void putBigEndian32(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t v) {
  bytes[at] = v >> 24;
  bytes[at + 1] = (v >> 16) & 0xFF;
  bytes[at + 2] = (v >> 8) & 0xFF;
  bytes[at + 3] = v & 0xFF;
}

// An ICC profile holding only a 'desc' tag: ICC v2 ASCII text, or a v4 'mluc' with `name`
// (ASCII here) in UTF-16BE as its first record.
inline std::vector<std::uint8_t> iccProfileDescribed(const std::string& name, bool version4) {
  std::vector<std::uint8_t> tag;
  if (!version4) {
    tag.assign(12 + name.size() + 1, 0);
    std::copy_n("desc", 4, tag.begin());
    putBigEndian32(tag, 8, static_cast<std::uint32_t>(name.size() + 1));
    std::copy(name.begin(), name.end(), tag.begin() + 12);
  } else {
    tag.assign(28 + 2 * name.size(), 0);
    std::copy_n("mluc", 4, tag.begin());
    putBigEndian32(tag, 8, 1);
    putBigEndian32(tag, 12, 12);
    std::copy_n("enUS", 4, tag.begin() + 16);
    putBigEndian32(tag, 20, static_cast<std::uint32_t>(2 * name.size()));
    putBigEndian32(tag, 24, 28);
    for (std::size_t i = 0; i < name.size(); ++i) tag[28 + 2 * i + 1] = name[i];
  }
  // Sized once: header, tag table and tag. (Appending the tag with insert() trips GCC 12's
  // -Warray-bounds at -O2.)
  constexpr std::size_t tagAt = 128 + 4 + 12;
  std::vector<std::uint8_t> profile(tagAt + tag.size(), 0);
  std::copy_n("acsp", 4, profile.begin() + 36);
  putBigEndian32(profile, 128, 1);
  std::copy_n("desc", 4, profile.begin() + 132);
  putBigEndian32(profile, 136, static_cast<std::uint32_t>(tagAt));
  putBigEndian32(profile, 140, static_cast<std::uint32_t>(tag.size()));
  std::copy(tag.begin(), tag.end(), profile.begin() + tagAt);
  putBigEndian32(profile, 0, static_cast<std::uint32_t>(profile.size()));
  return profile;
}

}  // namespace orlet::test
