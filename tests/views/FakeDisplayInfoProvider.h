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

  Size physicalSizeMillimeters(std::uint32_t id) const override {
    const auto* d = find(id);
    return d ? d->millimeters : Size{};
  }
  std::optional<ScreenDescription> screen(std::uint32_t id) const override {
    const auto* d = find(id);
    return d ? d->screen : std::nullopt;
  }
  std::optional<std::string> pixelEncoding(std::uint32_t id) const override {
    const auto* d = find(id);
    return d ? d->pixelEncoding : std::nullopt;
  }
  Rect bounds(std::uint32_t id) const override {
    const auto* d = find(id);
    return d ? d->bounds : Rect{};
  }

 private:
  const Display* find(std::uint32_t id) const {
    const auto it = displays.find(id);
    return it == displays.end() ? nullptr : &it->second;
  }
};

}  // namespace orlet::test
