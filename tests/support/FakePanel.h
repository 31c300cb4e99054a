#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "platform/Panel.h"
#include "support/FakeWindowServer.h"

namespace orlet::test {

// A panel's overlay button as a test sees it: what it shows, and a click.
class FakePanelButton {
 public:
  explicit FakePanelButton(const PanelButtonConfig& config) : config(config) {}

  void click() const { clicks.call(); }

  const PanelButtonConfig config;
  bool hidden = config.hidden;
  std::string symbol = config.symbol;
  ButtonTint tint = config.tint;
  std::string toolTip = config.toolTip;
  HandlerList<> clicks;
};

// A panel living in a FakeWindowServer: its frame, level, visibility and stacking are the
// server's, so tests read outcomes there. Like a real window system, a frame change made by the
// program is reported as didMove / didResize too.
class FakePanel final : public Panel {
 public:
  FakePanel(FakeWindowServer& server, const PanelConfig& config, ProcessId owner);
  ~FakePanel() override;

  WindowNumber windowNumber() const override { return number_; }
  void orderFrontRegardless() override { server_.raise(number_); }
  void orderOut() override { server_.hide(number_); }
  void orderBack() override { server_.lower(number_); }
  void orderAbove(WindowNumber sibling) override { server_.placeAbove(number_, sibling); }
  bool isVisible() const override { return server_.isShown(number_); }
  bool isMiniaturized() const override { return miniaturized_; }
  bool isOcclusionVisible() const override { return isVisible() && !server_.isCovered(number_); }
  PanelLevel level() const override { return static_cast<PanelLevel>(server_.level(number_)); }
  void setLevel(PanelLevel level) override { server_.setLevel(number_, static_cast<int>(level)); }
  Rect frame() const override { return server_.bounds(number_); }
  void setFrame(Rect frame) override;
  void setFrameOrigin(Point origin) override { setFrame(Rect::from(origin, frame().size())); }
  void setBackgroundColor(Color) override {}
  Subscription observe(PanelEvent event, std::function<void()> handler) override {
    return events_[static_cast<std::size_t>(event)].add(std::move(handler));
  }
  Subscription addMouseMonitor(std::function<EventDisposition(const MouseEvent&)> monitor) override;
  std::unique_ptr<PanelButton> addButton(const PanelButtonConfig& config) override;

  const PanelConfig& config() const { return config_; }
  void setMiniaturized(bool miniaturized) { miniaturized_ = miniaturized; }

  // The user drags the panel to `origin` (or resizes it), with the reports a window manager
  // sends.
  void userMove(Point origin);
  void userResize(Size size) { setFrame(Rect::from(frame().origin(), size)); }
  // Delivers a mouse event at a global point through the monitors; swallow when one of them
  // stopped it.
  EventDisposition send(MouseEventType type, Point screenLocation = {});

  // The overlay button in `corner`, nullptr if none.
  FakePanelButton* button(PanelCorner corner) const;

 private:
  friend class FakePanelFactory;
  void emit(PanelEvent event) { events_[static_cast<std::size_t>(event)].call(); }

  FakeWindowServer& server_;
  PanelConfig config_;
  WindowNumber number_;
  bool miniaturized_ = false;
  std::array<HandlerList<>, 3> events_;  // by PanelEvent
  HandlerList<const MouseEvent&, EventDisposition&> monitors_;
  std::vector<std::shared_ptr<FakePanelButton>> buttons_;
  std::function<void()> onDestroyed_;
};

// Makes FakePanels owned by `owner` (our own process) and keeps track of those still alive.
class FakePanelFactory final : public PanelFactory {
 public:
  FakePanelFactory(FakeWindowServer& server, ProcessId owner) : server_(server), owner_(owner) {}

  std::unique_ptr<Panel> createPanel(const PanelConfig& config) override;

  // The most recently made live panel with that content, nullptr if none.
  FakePanel* panel(PanelContent content) const;

 private:
  FakeWindowServer& server_;
  ProcessId owner_;
  std::shared_ptr<std::vector<FakePanel*>> live_ = std::make_shared<std::vector<FakePanel*>>();
};

}  // namespace orlet::test
