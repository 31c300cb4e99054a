#include "views/ScreenInfo.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <vector>

#include "views/AspectRatio.h"

namespace orlet {
namespace {

constexpr double kMillimetersPerInch = 25.4;

std::string joinedLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) {
    if (!text.empty()) text += '\n';
    text += line;
  }
  return text;
}

}  // namespace

std::string displayName(int displayIndex) {
  return displayIndex == 1 ? "Principal" : "Écran " + std::to_string(displayIndex);
}

std::optional<int> diagonalInches(Size millimeters) {
  if (!(millimeters.width > 0) || !(millimeters.height > 0)) return std::nullopt;
  const double diagonal = std::hypot(millimeters.width, millimeters.height);
  return static_cast<int>(std::lround(diagonal / kMillimetersPerInch));
}

std::string colorDepthLabel(const std::string& pixelEncoding) {
  if (pixelEncoding.find("10") != std::string::npos) return "10-bit";
  if (pixelEncoding.find("16") != std::string::npos) return "16-bit";
  std::string lower = pixelEncoding;
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (lower.find('f') != std::string::npos) return "Float (HDR)";
  return "8-bit";
}

ScreenInfo getScreenInfo(const DisplayInfoProvider& provider, std::uint32_t displayId) {
  ScreenInfo info;
  info.screenSizeInches = diagonalInches(provider.physicalSizeMillimeters(displayId));
  if (const auto screen = provider.screen(displayId)) {
    info.name = screen->localizedName;
    info.refreshRate = screen->maximumFramesPerSecond;
    info.colorSpace = screen->colorSpaceName;
  }
  if (const auto encoding = provider.pixelEncoding(displayId)) {
    info.colorDepth = colorDepthLabel(*encoding);
  }
  return info;
}

std::string displayDetailedInfo(const ScreenInfo& info, std::int64_t width, std::int64_t height) {
  std::vector<std::string> lines{info.name};
  if (info.screenSizeInches) lines.push_back(std::to_string(*info.screenSizeInches) + "\"");
  lines.push_back(std::to_string(width) + " × " + std::to_string(height));
  lines.push_back(aspectRatio(width, height));
  lines.push_back(std::to_string(info.refreshRate) + " Hz");
  if (info.colorSpace) lines.push_back(*info.colorSpace);
  lines.push_back(info.colorDepth);
  return joinedLines(lines);
}

}  // namespace orlet
