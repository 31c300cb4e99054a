#include "support/FakePanel.h"

#include <algorithm>

namespace orlet::test {
namespace {

// What the panel's owner holds; the button itself stays with the panel for the tests.
class ButtonHandle final : public PanelButton {
 public:
  explicit ButtonHandle(std::shared_ptr<FakePanelButton> button) : button_(std::move(button)) {}
  void setHidden(bool hidden) override { button_->hidden = hidden; }
  bool isHidden() const override { return button_->hidden; }
  void setSymbol(const std::string& symbol, ButtonTint tint) override {
    button_->symbol = symbol;
    button_->tint = tint;
  }
  void setToolTip(const std::string& toolTip) override { button_->toolTip = toolTip; }
  Subscription onClick(std::function<void()> handler) override {
    return button_->clicks.add(std::move(handler));
  }

 private:
  std::shared_ptr<FakePanelButton> button_;
};

}  // namespace

FakePanel::FakePanel(FakeWindowServer& server, const PanelConfig& config, ProcessId owner)
    : server_(server),
      config_(config),
      number_(server.createWindow(owner, Rect::from({0, 0}, config.contentSize),
                                  static_cast<int>(config.level))) {}

FakePanel::~FakePanel() {
  server_.destroyWindow(number_);
  if (onDestroyed_) onDestroyed_();
}

void FakePanel::setFrame(Rect frame) {
  const auto old = this->frame();
  server_.setBounds(number_, frame);
  if (frame.origin() != old.origin()) emit(PanelEvent::didMove);
  if (frame.size() != old.size()) emit(PanelEvent::didResize);
}

Subscription FakePanel::addMouseMonitor(
    std::function<EventDisposition(const MouseEvent&)> monitor) {
  return monitors_.add(
      [monitor = std::move(monitor)](const MouseEvent& event, EventDisposition& disposition) {
        if (disposition == EventDisposition::pass) disposition = monitor(event);
      });
}

std::unique_ptr<PanelButton> FakePanel::addButton(const PanelButtonConfig& config) {
  buttons_.push_back(std::make_shared<FakePanelButton>(config));
  return std::make_unique<ButtonHandle>(buttons_.back());
}

void FakePanel::userMove(Point origin) {
  emit(PanelEvent::willMove);
  setFrameOrigin(origin);
}

EventDisposition FakePanel::send(MouseEventType type, Point screenLocation) {
  MouseEvent event;
  event.type = type;
  event.screenLocation = screenLocation;
  event.locationInWindow = {screenLocation.x - frame().x, screenLocation.y - frame().y};
  auto disposition = EventDisposition::pass;
  monitors_.call(event, disposition);
  return disposition;
}

FakePanelButton* FakePanel::button(PanelCorner corner) const {
  for (const auto& b : buttons_) {
    if (b->config.corner == corner) return b.get();
  }
  return nullptr;
}

std::unique_ptr<Panel> FakePanelFactory::createPanel(const PanelConfig& config) {
  auto panel = std::make_unique<FakePanel>(server_, config, owner_);
  live_->push_back(panel.get());
  panel->onDestroyed_ = [live = std::weak_ptr(live_), raw = panel.get()] {
    if (auto list = live.lock()) std::erase(*list, raw);
  };
  return panel;
}

FakePanel* FakePanelFactory::panel(PanelContent content) const {
  const auto it = std::find_if(live_->rbegin(), live_->rend(), [content](const FakePanel* p) {
    return p->config().content == content;
  });
  return it == live_->rend() ? nullptr : *it;
}

}  // namespace orlet::test
