#include "window/EditorTexts.h"
#include "window/FrontApplication.h"
#include "window/WindowController.h"

namespace orlet {
namespace {

constexpr double minimumEditorWindowSide = 50;

PanelLevel levelFor(bool pinned) {
  return pinned ? PanelLevel::floating : PanelLevel::normal;
}

}  // namespace

void WindowController::setPinned(bool pinned) {
  isPinned_ = pinned;
  ports_.defaults.set(window_defaults::pinned, pinned);
  applyPinState();
  updatePinButtonAppearance();
}

void WindowController::togglePin() {
  setPinned(!isPinned_);
}

// Unpinning while any other application is in front hides the mirror at once: an unpinned
// mirror never outlives a change of the front application.
void WindowController::applyPinState() {
  if (!secondaryWindow_) return;
  auto& window = *secondaryWindow_;
  window.setLevel(levelFor(isPinned_));
  const auto front = FrontApplication::read(ports_.editor);
  if (!userWantsWindowVisible_ || (!front.isOurs && !isPinned_)) {
    window.orderOut();
    return;
  }
  if (front.isOurs) return;
  // Over the editor while it is in front; among normal windows while another application is.
  window.setLevel(front.isEditor ? PanelLevel::floating : PanelLevel::normal);
  placeAboveCaptureOne(front.isEditor ? Fallback::front : Fallback::back);
}

void WindowController::updatePinButtonAppearance() {
  if (!pinButton_) return;
  if (isPinned_) {
    pinButton_->setSymbol("pin.fill", ButtonTint::controlAccent);
  } else {
    pinButton_->setSymbol("pin.slash", ButtonTint::secondaryLabel);
  }
}

void WindowController::handleFrontAppChange(std::string_view appNameLowercased,
                                            bool isOurAppFront) {
  ensureWindow();
  if (!secondaryWindow_) return;
  const bool isCaptureOne = ports_.editor.isEditorName(appNameLowercased);
  if (lastFrontAppWasCaptureOne_ && !isCaptureOne) {
    wasVisibleBeforeLeavingCaptureOne_ = secondaryWindow_->isVisible();
  }
  followFrontApp(isCaptureOne, isOurAppFront);
  lastFrontAppWasCaptureOne_ = isCaptureOne;
}

void WindowController::editorChoiceDidChange() {
  updatePinToolTip();
  if (isPinned_) applyPinState();
}

// Read again each time the mirror is shown: in the automatic mode the editor named is the one
// running, which may have started or quit since. Not on a change of the front application: the
// round trips it takes would delay the restacking that change calls for.
void WindowController::updatePinToolTip() {
  if (!pinButton_) return;
  auto text = editor_texts::pinToolTip(ports_.editor.editorName());
  if (text == pinToolTip_) return;
  pinToolTip_ = std::move(text);
  pinButton_->setToolTip(pinToolTip_);
}

void WindowController::followFrontApp(bool isCaptureOne, bool isOurAppFront) {
  auto& window = *secondaryWindow_;
  if (!userWantsWindowVisible_ || (!isOurAppFront && !isPinned_)) {
    window.orderOut();
    return;
  }
  if (isOurAppFront) return;
  if (isCaptureOne) {
    window.setLevel(PanelLevel::floating);
    ports_.scheduler.after(placementDelay, lifetime_.guard([this] {
      if (isStillPinnedAndWanted()) placeAboveCaptureOne(Fallback::front);
    }));
  } else {
    ports_.scheduler.after(placementDelay, lifetime_.guard([this] {
      if (!isStillPinnedAndWanted()) return;
      secondaryWindow_->setLevel(PanelLevel::normal);
      placeAboveCaptureOne(Fallback::back);
    }));
  }
}

// A placement is due 0.05 s after the front changed; a mirror unpinned or closed meanwhile was
// ordered out, and ordering it above a window would bring it back unasked.
bool WindowController::isStillPinnedAndWanted() const {
  return isPinned_ && userWantsWindowVisible_;
}

void WindowController::placeAboveCaptureOne(Fallback fallback) {
  auto& window = *secondaryWindow_;
  if (const auto top = getTopCaptureOneWindowNumber()) {
    window.orderAbove(*top);
  } else if (fallback == Fallback::front) {
    window.orderFrontRegardless();
  } else {
    window.orderBack();
  }
}

bool WindowController::isCaptureOneFront() const {
  const auto front = ports_.editor.workspace().frontmostApplication();
  return front && ports_.editor.isEditor(*front);
}

std::optional<WindowNumber> WindowController::getTopCaptureOneWindowNumber() const {
  const auto editor = ports_.editor.firstRunning();
  // An unknown process would match every window whose owner is unknown too.
  if (!editor || editor->processIdentifier == 0) return std::nullopt;
  const auto windows = ports_.windowServer.onScreenWindows();
  if (!windows) return std::nullopt;
  for (const auto& info : *windows) {
    if (info.ownerPid != editor->processIdentifier || info.number == 0) continue;
    if (info.bounds.width > minimumEditorWindowSide &&
        info.bounds.height > minimumEditorWindowSide) {
      return info.number;
    }
  }
  return std::nullopt;
}

bool WindowController::isCaptureOneAboveWindow(const Panel& window) const {
  const auto top = getTopCaptureOneWindowNumber();
  const auto mine = window.windowNumber();
  if (!top || mine == 0) return false;
  const auto windows = ports_.windowServer.onScreenWindows();
  if (!windows) return false;
  std::optional<std::size_t> editorIndex;
  std::optional<std::size_t> mirrorIndex;
  for (std::size_t i = 0; i < windows->size() && !(editorIndex && mirrorIndex); ++i) {
    const auto number = (*windows)[i].number;
    if (number == *top) editorIndex = i;
    if (number == mine) mirrorIndex = i;
  }
  // The list runs front to back: a smaller index is nearer the front.
  return editorIndex && mirrorIndex && *editorIndex < *mirrorIndex;
}

}  // namespace orlet
