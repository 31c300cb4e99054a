#include "linux/qt/QtPanel.h"

#include <QWindow>
#include <algorithm>
#include <utility>

#include "linux/qt/DrawingPainter.h"
#include "linux/qt/HomeScreen.h"
#include "linux/qt/NativeCoordinates.h"
#include "linux/qt/QtPanelButton.h"
#include "linux/x11/Coverage.h"

namespace orlet::linux_qt {

QtPanel::QtPanel(const PanelConfig& config, const x11::XConnection& x, const WindowServer& windows)
    : windows_(windows), config_(config), level_(config.level) {
  widget_ = std::make_unique<PanelWidget>(
      config, PanelWidget::Callbacks{.geometryChanged = [this] { geometryChanged(); },
                                     .dragTo = [this](Point origin) { dragTo(origin); },
                                     .cancelSystemDrag = [this] { x11_->cancelMoveResize(); },
                                     .systemMoveStarted = [this] { systemMoveStarted(); },
                                     .painted = [this] { onScreen(); }});
  // The panel drawn whole as a face is the floating button: ORLET's other windows find its
  // display by this name.
  if (config.face) widget_->setObjectName(QLatin1String(floatingButtonName));
  widget_->winId();  // creates the X window now, so that its hints can be set before mapping
  x11_.emplace(x, static_cast<xcb_window_t>(widget_->winId()));
  x11_->refuseFocus();
  mouseMonitor_.emplace(*widget_->windowHandle());
  reported_ = frame();
}

QtPanel::~QtPanel() {
  mouseMonitor_.reset();
  widget_.reset();
}

WindowNumber QtPanel::windowNumber() const {
  return static_cast<WindowNumber>(widget_->winId());
}

void QtPanel::map() {
  if (widget_->isVisible()) return;
  x11_->prepareForMap(level_ == PanelLevel::floating, config_.joinsAllSpaces);
  widget_->show();
}

void QtPanel::onScreen() {
  if (pendingRestack_) std::exchange(pendingRestack_, {})();
}

// A window mapped without the focus is put under the active window by some window managers
// (openbox's "nonintrusive" placement), hence the explicit raise.
void QtPanel::orderFrontRegardless() {
  restackOnceMapped([this] { x11_->raise(); });
}

void QtPanel::orderOut() {
  pendingRestack_ = {};
  widget_->hide();
}

void QtPanel::orderBack() {
  restackOnceMapped([this] { x11_->lower(); });
}

void QtPanel::orderAbove(WindowNumber sibling) {
  restackOnceMapped([this, sibling] { x11_->restackAbove(static_cast<xcb_window_t>(sibling)); });
}

// metacity and Mutter place a window that did not get the focus below the active window when
// they map it, which they do after reading a restack sent with the map request: for a window
// not yet on screen the restack is asked for again once the server has shown it.
void QtPanel::restackOnceMapped(std::function<void()> restack) {
  const bool onScreen = widget_->isVisible() && widget_->windowHandle()->isExposed();
  map();
  restack();
  pendingRestack_ = onScreen ? std::function<void()>{} : std::move(restack);
}

bool QtPanel::isVisible() const {
  return widget_->isVisible();
}

bool QtPanel::isMiniaturized() const {
  return widget_->isVisible() && x11_->isHidden();
}

// Without a compositor X keeps no occlusion state for us: the windows in front of this one,
// front to back, must leave some part of it uncovered.
bool QtPanel::isOcclusionVisible() const {
  if (!widget_->isVisible()) return false;
  const auto list = windows_.onScreenWindows();
  if (!list) return true;
  const auto self = windowNumber();
  const auto mine = std::find_if(list->begin(), list->end(),
                                 [self](const WindowInfo& w) { return w.number == self; });
  if (mine == list->end()) return false;  // not managed (yet): nothing of it is on screen
  std::vector<Rect> covers;
  for (auto it = list->begin(); it != mine; ++it) covers.push_back(it->bounds);
  return !x11::uncoveredParts(mine->bounds, covers).empty();
}

void QtPanel::setLevel(PanelLevel level) {
  if (level == level_) return;
  level_ = level;
  if (widget_->isVisible()) x11_->setAbove(level == PanelLevel::floating);
}

Rect QtPanel::frame() const {
  return toNative(widget_->geometry());
}

void QtPanel::setFrame(Rect frame) {
  requestedOrigin_ = frame.origin();
  widget_->setGeometry(toLogical(frame));
}

void QtPanel::setFrameOrigin(Point origin) {
  setFrame(Rect::from(origin, frame().size()));
}

void QtPanel::setBackgroundColor(Color color) {
  widget_->setBackgroundColor(toQColor(color));
}

HandlerList<>& QtPanel::handlers(PanelEvent event) {
  switch (event) {
    case PanelEvent::willMove:
      return willMove_;
    case PanelEvent::didMove:
      return didMove_;
    case PanelEvent::didResize:
      break;
  }
  return didResize_;
}

Subscription QtPanel::observe(PanelEvent event, std::function<void()> handler) {
  return handlers(event).add(std::move(handler));
}

Subscription QtPanel::addMouseMonitor(std::function<EventDisposition(const MouseEvent&)> monitor) {
  return mouseMonitor_->add(std::move(monitor));
}

std::unique_ptr<PanelButton> QtPanel::addButton(const PanelButtonConfig& config) {
  auto button = std::make_unique<QtPanelButton>(*widget_, config);
  widget_->raiseOverlays();
  return button;
}

void QtPanel::setContentWidget(QWidget* content) {
  widget_->setContent(content);
}

// The round button moves itself while dragged: a user move, unlike setFrame.
void QtPanel::dragTo(Point origin) {
  widget_->setGeometry(toLogical(Rect::from(origin, frame().size())));
}

// Some window managers (openbox) report where they moved a window only once the move ends: the
// move counts as begun when the window manager takes it over.
void QtPanel::systemMoveStarted() {
  if (std::exchange(userMoving_, true)) return;
  willMove_.call();
}

// Qt reports the configure events the window manager sends. A move the user starts is
// announced with willMove first; moves the program asked for are reported as didMove only,
// as the platform this mirrors does.
void QtPanel::geometryChanged() {
  const Rect now = frame();
  const bool moved = now.origin() != reported_.origin();
  const bool resized = now.size() != reported_.size();
  reported_ = now;
  if (moved) {
    const bool requested = requestedOrigin_ && *requestedOrigin_ == now.origin();
    if (requested) requestedOrigin_.reset();
    if (!requested && !userMoving_) willMove_.call();
    didMove_.call();
    userMoving_ = !requested && (windows_.pressedMouseButtons() & mouse_button::left) != 0;
  }
  if (resized) didResize_.call();
}

}  // namespace orlet::linux_qt
