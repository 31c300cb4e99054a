#include "support/FakePanel.h"

namespace orlet::test {
namespace {

// What the panel's owner holds; the button itself stays with the panel for the tests.
class ButtonHandle final : public PanelButton {
 public:
  explicit ButtonHandle(std::shared_ptr<FakePanelButton> button) : button_(std::move(button)) {}
  void setHidden(bool hidden) override { button_->setHidden(hidden); }
  bool isHidden() const override { return button_->isHidden(); }
  void setSymbol(const std::string& symbol, ButtonTint tint) override {
    button_->setSymbol(symbol, tint);
  }
  Subscription onClick(std::function<void()> handler) override {
    return button_->onClick(std::move(handler));
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

bool FakePanel::isOcclusionVisible() const {
  return isVisible() && !server_.isCovered(number_);
}

PanelLevel FakePanel::level() const {
  return static_cast<PanelLevel>(server_.level(number_));
}

void FakePanel::setLevel(PanelLevel level) {
  server_.setLevel(number_, static_cast<int>(level));
}

void FakePanel::setFrame(Rect frame) {
  const auto old = this->frame();
  server_.setBounds(number_, frame);
  if (frame.origin() != old.origin()) emit(PanelEvent::didMove);
  if (frame.size() != old.size()) emit(PanelEvent::didResize);
}

void FakePanel::setFrameOrigin(Point origin) {
  setFrame(Rect::from(origin, frame().size()));
}

Subscription FakePanel::observe(PanelEvent event, std::function<void()> handler) {
  switch (event) {
    case PanelEvent::willMove:
      return willMove_.add(std::move(handler));
    case PanelEvent::didMove:
      return didMove_.add(std::move(handler));
    case PanelEvent::didResize:
      return didResize_.add(std::move(handler));
  }
  return {};
}

Subscription FakePanel::addMouseMonitor(
    std::function<EventDisposition(const MouseEvent&)> monitor) {
  return monitors_.add(
      [monitor = std::move(monitor)](const MouseEvent& event, EventDisposition& disposition) {
        if (disposition == EventDisposition::pass) disposition = monitor(event);
      });
}

std::unique_ptr<PanelButton> FakePanel::addButton(const PanelButtonConfig& config) {
  auto button = std::make_shared<FakePanelButton>(config);
  buttons_.push_back(button);
  return std::make_unique<ButtonHandle>(button);
}

void FakePanel::userMove(Point origin) {
  emit(PanelEvent::willMove);
  setFrameOrigin(origin);
}

void FakePanel::userResize(Size size) {
  setFrame(Rect::from(frame().origin(), size));
}

EventDisposition FakePanel::send(const MouseEvent& event) {
  auto disposition = EventDisposition::pass;
  monitors_.call(event, disposition);
  return disposition;
}

EventDisposition FakePanel::send(MouseEventType type, Point screenLocation) {
  MouseEvent event;
  event.type = type;
  event.screenLocation = screenLocation;
  event.locationInWindow = {screenLocation.x - frame().x, screenLocation.y - frame().y};
  return send(event);
}

FakePanelButton* FakePanel::button(PanelCorner corner) const {
  for (const auto& b : buttons_) {
    if (b->config().corner == corner) return b.get();
  }
  return nullptr;
}

void FakePanel::emit(PanelEvent event) {
  auto& list = event == PanelEvent::willMove  ? willMove_
               : event == PanelEvent::didMove ? didMove_
                                              : didResize_;
  list.call();
}

}  // namespace orlet::test
