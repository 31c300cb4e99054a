#pragma once

#include <functional>
#include <string>

#include "foundation/HandlerList.h"
#include "platform/Panel.h"

namespace orlet::test {

// A panel's overlay button as a test sees it: what it shows, and a click.
class FakePanelButton {
 public:
  explicit FakePanelButton(const PanelButtonConfig& config)
      : config_(config), hidden_(config.hidden), symbol_(config.symbol), tint_(config.tint) {}

  const PanelButtonConfig& config() const { return config_; }
  bool isHidden() const { return hidden_; }
  const std::string& symbol() const { return symbol_; }
  ButtonTint tint() const { return tint_; }

  void click() const { clicks_.call(); }

  // For the PanelButton handed to the panel's owner.
  void setHidden(bool hidden) { hidden_ = hidden; }
  void setSymbol(const std::string& symbol, ButtonTint tint) {
    symbol_ = symbol;
    tint_ = tint;
  }
  Subscription onClick(std::function<void()> handler) { return clicks_.add(std::move(handler)); }

 private:
  PanelButtonConfig config_;
  bool hidden_;
  std::string symbol_;
  ButtonTint tint_;
  HandlerList<> clicks_;
};

}  // namespace orlet::test
