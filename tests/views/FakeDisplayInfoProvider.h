#pragma once

#include <map>

#include "platform/DisplayInfo.h"

namespace orlet::test {

// Display facts set by the test, per display identifier; unknown identifiers have none.
class FakeDisplayInfoProvider final : public DisplayInfoProvider {
 public:
  struct Display {
    Size millimeters;
    std::optional<ScreenDescription> screen;
    std::optional<std::string> pixelEncoding;
    Rect bounds;
  };
  std::map<std::uint32_t, Display> displays;

  Size physicalSizeMillimeters(std::uint32_t id) const override { return find(id).millimeters; }
  std::optional<ScreenDescription> screen(std::uint32_t id) const override {
    return find(id).screen;
  }
  std::optional<std::string> pixelEncoding(std::uint32_t id) const override {
    return find(id).pixelEncoding;
  }
  Rect bounds(std::uint32_t id) const override { return find(id).bounds; }

 private:
  Display find(std::uint32_t id) const {
    const auto it = displays.find(id);
    return it == displays.end() ? Display{} : it->second;
  }
};

}  // namespace orlet::test
