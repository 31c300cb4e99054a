#include "window/WindowController.h"

#include "app/SharedInstance.h"
#include "window/EditorTexts.h"
#include "window/NonActivatingPanel.h"
#include "window/ScreenPlacement.h"

namespace orlet {
namespace {

constexpr double overlayButtonSize = 22;
constexpr double overlayButtonMargin = 8;

PanelButtonConfig backButtonConfig() {
  return {.symbol = "arrow.left",
          .accessibilityDescription = "Retour",
          .toolTip = "Retour à la liste des écrans",
          .tint = ButtonTint::secondaryLabel,
          .corner = PanelCorner::topLeading,
          .size = overlayButtonSize,
          .margin = overlayButtonMargin,
          .hidden = true};
}

PanelButtonConfig pinButtonConfig(bool pinned, std::string toolTip) {
  return {.symbol = pinned ? "pin.fill" : "pin.slash",
          .accessibilityDescription = {},
          .toolTip = std::move(toolTip),
          .tint = pinned ? ButtonTint::controlAccent : ButtonTint::secondaryLabel,
          .corner = PanelCorner::topTrailing,
          .size = overlayButtonSize,
          .margin = overlayButtonMargin,
          .hidden = false};
}

}  // namespace

WindowController::WindowController(const Ports& ports)
    : ports_(ports), isPinned_(ports.defaults.boolean(window_defaults::pinned)) {}

WindowController::~WindowController() = default;

WindowController& WindowController::shared() {
  return SharedInstance<WindowController>::get();
}

void WindowController::ensureWindow() {
  if (secondaryWindow_) return;
  auto window = ports_.panels.createPanel(windowConfig());
  if (!window) return;
  window->setBackgroundColor(backgroundColor_);
  addOverlayButtons(*window);
  restoreFrame(*window);
  observeWindow(*window);
  secondaryWindow_ = std::move(window);
}

PanelConfig WindowController::windowConfig() const {
  return {.content = PanelContent::mirror,
          .contentSize = defaultSize,
          .minimumSize = minimumSize,
          .level = isPinned_ ? PanelLevel::floating : PanelLevel::normal,
          .resizable = true,
          .movableByBackground = true,
          .joinsAllSpaces = true,
          .hasShadow = false,
          .face = std::nullopt,
          .toolTip = {}};
}

void WindowController::addOverlayButtons(Panel& window) {
  backButton_ = window.addButton(backButtonConfig());
  pinToolTip_ = editor_texts::pinToolTip(ports_.editor.editorName());
  pinButton_ = window.addButton(pinButtonConfig(isPinned_, pinToolTip_));
  auto& notifications = ports_.notifications;
  if (backButton_) {
    subscriptions_.push_back(backButton_->onClick([this] { backButtonClicked(); }));
    subscriptions_.push_back(notifications.observe(notification::showBackButton,
                                                   [this] { backButton_->setHidden(false); }));
    subscriptions_.push_back(notifications.observe(notification::hideBackButton,
                                                   [this] { backButton_->setHidden(true); }));
  }
  if (pinButton_) subscriptions_.push_back(pinButton_->onClick([this] { togglePin(); }));
}

// Two independent steps: a complete frame first, then the origin alone, so that a saved
// position without a saved size still places the window at its default size. A position on no
// display (one unplugged since) is not restored: the window then opens beside the button.
void WindowController::restoreFrame(Panel& window) const {
  const auto& defaults = ports_.defaults;
  const bool hasPosition =
      defaults.number(window_defaults::positionX) && defaults.number(window_defaults::positionY);
  const auto width = defaults.number(window_defaults::width);
  const auto height = defaults.number(window_defaults::height);
  if (hasPosition && width && height) {
    window.setFrame(Rect::from(window.frame().origin(), {*width, *height}));
  }
  if (const auto origin = savedOrigin(window.frame().size())) window.setFrameOrigin(*origin);
}

std::optional<Point> WindowController::savedOrigin(Size size) const {
  const auto x = ports_.defaults.number(window_defaults::positionX);
  const auto y = ports_.defaults.number(window_defaults::positionY);
  if (!x || !y) return std::nullopt;
  const Point origin{*x, *y};
  if (!liesOnAScreen(Rect::from(origin, size), ports_.windowServer.screens())) return std::nullopt;
  return origin;
}

void WindowController::observeWindow(Panel& window) {
  subscriptions_.push_back(window.observe(PanelEvent::willMove, [this] { windowWillMove(); }));
  subscriptions_.push_back(window.observe(PanelEvent::didMove, [this, &window] {
    const auto origin = window.frame().origin();
    ports_.defaults.set(window_defaults::positionX, origin.x);
    ports_.defaults.set(window_defaults::positionY, origin.y);
    windowDidMove();
  }));
  subscriptions_.push_back(window.observe(PanelEvent::didResize, [this, &window] {
    const auto size = window.frame().size();
    ports_.defaults.set(window_defaults::width, size.width);
    ports_.defaults.set(window_defaults::height, size.height);
  }));
  subscriptions_.push_back(handActivationBackOnPress(window, ports_.scheduler, ports_.editor));
}

bool WindowController::toggleWindow(const Panel* anchor) {
  ensureWindow();
  if (!secondaryWindow_) return false;
  auto& window = *secondaryWindow_;
  if (isWindowEffectivelyVisible(window)) {
    userWantsWindowVisible_ = false;
    window.orderOut();
    ports_.notifications.post(notification::windowDidHide);
    return false;
  }
  userWantsWindowVisible_ = true;
  updatePinToolTip();
  if (anchor && !savedOrigin(window.frame().size())) placeBeside(*anchor);
  window.orderFrontRegardless();
  ports_.notifications.post(notification::windowDidShow);
  return true;
}

// Left edge against the anchor's right edge, top edges aligned. Our y grows downwards, so
// aligning the tops means equal origin y (no height arithmetic as in a y-up system).
void WindowController::placeBeside(const Panel& anchor) {
  const auto anchorFrame = anchor.frame();
  secondaryWindow_->setFrameOrigin({anchorFrame.maxX(), anchorFrame.minY()});
}

void WindowController::bringToFront() {
  if (secondaryWindow_) secondaryWindow_->orderFrontRegardless();
}

bool WindowController::isWindowVisible() const {
  return secondaryWindow_ && secondaryWindow_->isVisible();
}

bool WindowController::isWindowEffectivelyVisible(const Panel& window) const {
  if (!window.isVisible() || window.isMiniaturized()) return false;
  if (!isPinned_ && isCaptureOneFront() && isCaptureOneAboveWindow(window)) return false;
  return window.isOcclusionVisible();
}

bool WindowController::isLeftMouseDown() const {
  return (ports_.windowServer.pressedMouseButtons() & mouse_button::left) != 0;
}

// Counted as moving from here even before a first move is reported, and for as long as the
// button stays down: some window managers report the position only once the move ends.
void WindowController::windowWillMove() {
  markWindowMoving();
}

void WindowController::windowDidMove() {
  markWindowMoving();
}

void WindowController::beginWindowMove() {
  isWindowBeingMoved_ = true;
  moveEndWorkItem_.cancel();
}

// Moves are reported in bursts with pauses while the pointer rests; the drag counts as over
// only once the button has been released, checked again every moveEndDelay until then.
void WindowController::markWindowMoving() {
  beginWindowMove();
  moveEndWorkItem_ = ports_.scheduler.after(moveEndDelay, lifetime_.guard([this] {
    if (isLeftMouseDown()) {
      markWindowMoving();
    } else {
      isWindowBeingMoved_ = false;
    }
  }));
}

void WindowController::backButtonClicked() {
  ports_.notifications.post(notification::backButtonPressed);
}

void WindowController::setBackgroundColor(Color color) {
  backgroundColor_ = color;
  if (secondaryWindow_) secondaryWindow_->setBackgroundColor(color);
}

}  // namespace orlet
