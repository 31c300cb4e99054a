#pragma once

#include <functional>
#include <memory>

#include "foundation/HandlerList.h"
#include "platform/SettingsPanel.h"

namespace orlet::test {

// A settings panel: shown or not, closed by its close button, clicked.
class FakeSettingsPanel final : public SettingsPanel {
 public:
  explicit FakeSettingsPanel(std::function<void()> onClose) : onClose(std::move(onClose)) {}
  void orderFrontRegardless() override {
    visible = true;
    ++raised;
  }
  bool isVisible() const override { return visible; }
  void close() override {
    willClose_.call();
    visible = false;
  }
  Subscription observeWillClose(std::function<void()> h) override {
    return willClose_.add(std::move(h));
  }
  Subscription observeLeftMouseUp(std::function<void()> h) override {
    return leftUp_.add(std::move(h));
  }
  void releaseClick() { leftUp_.call(); }

  std::function<void()> onClose;  // what "Valider" calls after saving
  bool visible = false;
  int raised = 0;

 private:
  HandlerList<> willClose_, leftUp_;
};

class FakeSettingsPanelFactory final : public SettingsPanelFactory {
 public:
  std::unique_ptr<SettingsPanel> createSettingsPanel(std::function<void()> onClose) override {
    auto panel = std::make_unique<FakeSettingsPanel>(std::move(onClose));
    last = panel.get();
    ++created;
    return panel;
  }
  FakeSettingsPanel* last = nullptr;
  int created = 0;
};

}  // namespace orlet::test
