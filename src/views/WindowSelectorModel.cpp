#include "views/WindowSelectorModel.h"

#include <algorithm>

namespace orlet {

WindowSelectorModel::WindowSelectorModel(const Ports& ports)
    : ports_(ports), dm_(ports.scheduler, ports.capture, ports.clicks) {
  observeCatalogue();
  observeNotifications();
}

void WindowSelectorModel::observeCatalogue() {
  subscriptions_.push_back(dm_.isLoading.observe([this](bool loading) {
    changed();
    if (loading || afterRefresh_.empty()) return;
    // Observers run before the value is stored: continue on the next turn, when the ended
    // refresh is visible to whatever runs next.
    ports_.scheduler.async(lifetime_.guard([pending = std::exchange(afterRefresh_, {})] {
      for (const auto& then : pending) then();
    }));
  }));
  subscriptions_.push_back(dm_.displays.observe([this](const auto&) { changed(); }));
  subscriptions_.push_back(dm_.hasPermission.observe([this](bool) { changed(); }));
  subscriptions_.push_back(dm_.unreadableDepth.observe([this](int) { changed(); }));
  subscriptions_.push_back(selected.observe([this](const auto&) { changed(); }));
}

void WindowSelectorModel::observeNotifications() {
  auto& center = ports_.notifications;
  subscriptions_.push_back(
      center.observe(notification::windowDidShow, [this] { checkPermissionAndStart(true); }));
  subscriptions_.push_back(center.observe(notification::windowDidHide, [this] {
    stopTask();
    dm_.stopAll();
  }));
  subscriptions_.push_back(center.observe(notification::backButtonPressed, [this] {
    selected.set(std::nullopt);
    startTask();
    ports_.notifications.post(notification::hideBackButton);
  }));
}

SelectorForeground WindowSelectorModel::foreground() const {
  if (!dm_.hasPermission.get()) return SelectorForeground::permissionCard;
  if (selected->has_value()) return SelectorForeground::enlarged;
  // A refresh over a list already shown keeps the grid; the loading text is for an empty list.
  if (dm_.isLoading.get() && dm_.displays->empty()) return SelectorForeground::loading;
  // An empty grid over a screen that cannot be read says why instead.
  if (dm_.displays->empty() && dm_.unreadableDepth.get() > 0) {
    return SelectorForeground::unreadableScreen;
  }
  return SelectorForeground::grid;
}

std::string WindowSelectorModel::permissionStatusText() const {
  return dm_.hasPermission.get() ? "Autorisée" : "Non autorisée";
}

int WindowSelectorModel::enlargedDisplayIndex() const {
  if (!selected->has_value()) return 1;
  const auto& list = dm_.displays.get();
  const auto id = selected.get()->displayID;
  const auto it =
      std::find_if(list.begin(), list.end(), [id](const Display& d) { return d.displayID == id; });
  return it == list.end() ? 1 : static_cast<int>(it - list.begin()) + 1;
}

void WindowSelectorModel::appear() {
  checkPermissionAndStart(false);
}

void WindowSelectorModel::disappear() {
  stopTask();
  dm_.stopAll();
}

void WindowSelectorModel::applicationDidBecomeActive() {
  if (ports_.isWindowVisible && ports_.isWindowVisible()) checkPermissionAndStart(false);
}

void WindowSelectorModel::checkPermissionAndStart(bool requestIfNeeded) {
  const bool granted = ports_.permission.preflight();
  applyPermission(granted);
  if (granted) {
    ports_.scheduler.async(lifetime_.guard([this, epoch = loopEpoch_] {
      if (epoch == loopEpoch_) refreshThenStartTask();
    }));
  } else if (requestIfNeeded) {
    requestPermission();
  }
}

void WindowSelectorModel::requestPermission() {
  if (isRequestingPermission_) return;
  isRequestingPermission_ = true;
  changed();
  ports_.scheduler.async(lifetime_.guard([this] {
    ports_.permission.request(lifetime_.guard([this](bool granted) {
      isRequestingPermission_ = false;
      applyPermission(granted);
      if (granted) refreshThenStartTask();
    }));
  }));
}

void WindowSelectorModel::applyPermission(bool granted) {
  dm_.hasPermission.set(granted);
  if (granted) return;
  stopTask();
  dm_.stopAll();
  dm_.displays.set({});
  dm_.isLoading.set(false);
  selected.set(std::nullopt);
  ports_.notifications.post(notification::hideBackButton);
}

void WindowSelectorModel::refresh(std::function<void()> then) {
  if (dm_.isLoading.get()) {
    // Refreshes never overlap: this one ends at once.
    if (then) then();
    return;
  }
  if (then) afterRefresh_.push_back(std::move(then));
  dm_.refresh();
}

void WindowSelectorModel::refreshThenStartTask() {
  // The loop stays off if it was stopped (panel hidden, permission withdrawn) meanwhile.
  refresh([this, epoch = loopEpoch_] {
    if (epoch == loopEpoch_ && dm_.hasPermission.get()) startTask();
  });
}

void WindowSelectorModel::startTask() {
  task_ = ports_.scheduler.every(refreshInterval, lifetime_.guard([this] {
    if (!selected->has_value()) refresh();
  }));
}

void WindowSelectorModel::stopTask() {
  task_.cancel();
  ++loopEpoch_;
}

void WindowSelectorModel::openScreenRecordingSettings() {
  ports_.permission.openSettings();
}

void WindowSelectorModel::select(const Display& display) {
  selected.set(display);
  ports_.notifications.post(notification::showBackButton);
}

void WindowSelectorModel::back() {
  selected.set(std::nullopt);
  startTask();
}

Subscription WindowSelectorModel::observeChanges(std::function<void()> handler) {
  return revision_.observe([handler = std::move(handler)](std::uint64_t) { handler(); });
}

void WindowSelectorModel::changed() {
  if (changePending_) return;
  changePending_ = true;
  ports_.scheduler.async(lifetime_.guard([this] {
    changePending_ = false;
    revision_.set(revision_.get() + 1);
  }));
}

}  // namespace orlet
