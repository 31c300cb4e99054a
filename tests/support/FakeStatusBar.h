#pragma once

#include <memory>
#include <optional>

#include "platform/StatusBar.h"

namespace orlet::test {

// A notification area that remembers what it was asked to show.
class FakeStatusBar final : public StatusBar {
 public:
  bool createStatusItem(const Drawing& icon, std::shared_ptr<const Menu> menu) override {
    if (!hasTray_) return false;
    icon_ = icon;
    menu_ = std::move(menu);
    return true;
  }
  void popUpMenu(std::shared_ptr<const Menu> menu, Point screenLocation) override {
    poppedUpMenu_ = std::move(menu);
    poppedUpAt_ = screenLocation;
  }

  void setHasTray(bool hasTray) { hasTray_ = hasTray; }
  const std::optional<Drawing>& icon() const { return icon_; }
  std::shared_ptr<const Menu> menu() const { return menu_; }
  std::shared_ptr<const Menu> poppedUpMenu() const { return poppedUpMenu_; }
  std::optional<Point> poppedUpAt() const { return poppedUpAt_; }

 private:
  bool hasTray_ = true;
  std::optional<Drawing> icon_;
  std::shared_ptr<const Menu> menu_;
  std::shared_ptr<const Menu> poppedUpMenu_;
  std::optional<Point> poppedUpAt_;
};

}  // namespace orlet::test
