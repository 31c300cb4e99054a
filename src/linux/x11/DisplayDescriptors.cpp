#include "linux/x11/DisplayDescriptors.h"

#include <array>
#include <bit>
#include <cmath>

namespace orlet::x11 {
namespace {

constexpr std::array<std::uint8_t, 8> kEdidHeader{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr std::size_t kEdidBlockSize = 128;
constexpr std::size_t kDescriptorOffsets[] = {54, 72, 90, 108};
constexpr std::uint8_t kMonitorNameTag = 0xFC;

constexpr std::size_t kIccHeaderSize = 128;
constexpr std::size_t kIccTagEntrySize = 12;

std::uint32_t bigEndian32(std::span<const std::uint8_t> bytes, std::size_t at) {
  return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) |
         (std::uint32_t{bytes[at + 2]} << 8) | std::uint32_t{bytes[at + 3]};
}

bool hasSignature(std::span<const std::uint8_t> bytes, std::size_t at, const char (&sig)[5]) {
  for (std::size_t i = 0; i < 4; ++i) {
    if (bytes[at + i] != static_cast<std::uint8_t>(sig[i])) return false;
  }
  return true;
}

std::string trimmed(std::string text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void appendUtf8(std::string& out, std::uint32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

std::string utf16BigEndianToUtf8(std::span<const std::uint8_t> bytes) {
  std::string out;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    std::uint32_t unit = (std::uint32_t{bytes[i]} << 8) | bytes[i + 1];
    if (unit == 0) break;
    const bool highSurrogate = unit >= 0xD800 && unit < 0xDC00;
    if (highSurrogate && i + 3 < bytes.size()) {
      const std::uint32_t low = (std::uint32_t{bytes[i + 2]} << 8) | bytes[i + 3];
      if (low >= 0xDC00 && low < 0xE000) {
        unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    appendUtf8(out, unit);
  }
  return out;
}

// textDescriptionType (ICC v2): signature, reserved, ASCII count including the NUL, ASCII.
std::optional<std::string> textDescription(std::span<const std::uint8_t> tag) {
  if (tag.size() < 12) return std::nullopt;
  const std::uint32_t count = bigEndian32(tag, 8);
  if (count == 0 || count > tag.size() - 12) return std::nullopt;
  std::string text(reinterpret_cast<const char*>(tag.data() + 12), count);
  text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
  return text;
}

// multiLocalizedUnicodeType (ICC v4): records of language, country, byte length, offset from
// the tag's start; strings in UTF-16BE. The first record stands for the profile.
std::optional<std::string> multiLocalizedDescription(std::span<const std::uint8_t> tag) {
  if (tag.size() < 28 || bigEndian32(tag, 8) == 0) return std::nullopt;
  const std::uint32_t length = bigEndian32(tag, 20);
  const std::uint32_t offset = bigEndian32(tag, 24);
  if (offset > tag.size() || length > tag.size() - offset) return std::nullopt;
  return utf16BigEndianToUtf8(tag.subspan(offset, length));
}

}  // namespace

std::optional<std::string> edidMonitorName(std::span<const std::uint8_t> edid) {
  if (edid.size() < kEdidBlockSize) return std::nullopt;
  for (std::size_t i = 0; i < kEdidHeader.size(); ++i) {
    if (edid[i] != kEdidHeader[i]) return std::nullopt;
  }
  for (const std::size_t at : kDescriptorOffsets) {
    // A display descriptor has a zero pixel clock where a timing descriptor has its clock.
    const bool isDisplayDescriptor = edid[at] == 0 && edid[at + 1] == 0 && edid[at + 2] == 0;
    if (!isDisplayDescriptor || edid[at + 3] != kMonitorNameTag) continue;
    std::string name;
    for (std::size_t i = at + 5; i < at + 18 && edid[i] != 0x0A; ++i) {
      if (edid[i] >= 0x20 && edid[i] < 0x7F) name += static_cast<char>(edid[i]);
    }
    name = trimmed(name);
    if (!name.empty()) return name;
  }
  return std::nullopt;
}

std::optional<std::string> iccProfileDescription(std::span<const std::uint8_t> profile) {
  if (profile.size() < kIccHeaderSize + 4 || !hasSignature(profile, 36, "acsp")) {
    return std::nullopt;
  }
  const std::uint32_t tagCount = bigEndian32(profile, kIccHeaderSize);
  for (std::uint32_t t = 0; t < tagCount; ++t) {
    const std::size_t entry = kIccHeaderSize + 4 + t * kIccTagEntrySize;
    if (entry + kIccTagEntrySize > profile.size()) return std::nullopt;
    if (!hasSignature(profile, entry, "desc")) continue;
    const std::uint32_t offset = bigEndian32(profile, entry + 4);
    const std::uint32_t size = bigEndian32(profile, entry + 8);
    if (offset > profile.size() || size > profile.size() - offset || size < 4) {
      return std::nullopt;
    }
    const auto tag = profile.subspan(offset, size);
    std::optional<std::string> text;
    if (hasSignature(tag, 0, "desc")) text = textDescription(tag);
    if (hasSignature(tag, 0, "mluc")) text = multiLocalizedDescription(tag);
    if (text && !trimmed(*text).empty()) return trimmed(*text);
    return std::nullopt;
  }
  return std::nullopt;
}

std::string pixelEncodingText(std::uint32_t redMask, std::uint32_t greenMask,
                              std::uint32_t blueMask, int depth) {
  if (redMask == 0 || greenMask == 0 || blueMask == 0) return "P" + std::to_string(depth);
  return "R" + std::to_string(std::popcount(redMask)) + "G" +
         std::to_string(std::popcount(greenMask)) + "B" + std::to_string(std::popcount(blueMask));
}

int modeRefreshRate(std::uint32_t dotClock, std::uint32_t htotal, std::uint32_t vtotal,
                    bool interlaced, bool doubleScan) {
  if (dotClock == 0 || htotal == 0 || vtotal == 0) return 0;
  double lines = vtotal;
  if (doubleScan) lines *= 2;
  if (interlaced) lines /= 2;
  return static_cast<int>(std::lround(dotClock / (static_cast<double>(htotal) * lines)));
}

}  // namespace orlet::x11
