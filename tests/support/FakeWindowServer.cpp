#include "support/FakeWindowServer.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orlet::test {

std::optional<std::vector<WindowInfo>> FakeWindowServer::onScreenWindows() const {
  if (!listAvailable_) return std::nullopt;
  std::vector<WindowInfo> list;
  for (const auto& w : windows_) {
    if (w.shown) list.push_back({w.owner, w.number, w.bounds});
  }
  return list;
}

WindowNumber FakeWindowServer::createWindow(ProcessId owner, Rect bounds, int level) {
  const auto number = nextNumber_++;
  windows_.insert(windows_.begin(), {number, owner, bounds, level, false});
  restack();
  return number;
}

WindowNumber FakeWindowServer::openWindow(ProcessId owner, Rect bounds) {
  const auto number = createWindow(owner, bounds);
  raise(number);
  return number;
}

void FakeWindowServer::destroyWindow(WindowNumber number) {
  std::erase_if(windows_, [number](const Window& w) { return w.number == number; });
}

void FakeWindowServer::reinsert(WindowNumber number, const std::function<std::size_t()>& at) {
  const auto* found = find(number);
  if (!found) throw std::out_of_range("no such fake window");
  auto window = *found;
  window.shown = true;
  destroyWindow(number);
  windows_.insert(windows_.begin() + static_cast<std::ptrdiff_t>(at()), window);
  restack();
}

void FakeWindowServer::raise(WindowNumber number) {
  reinsert(number, [] { return 0; });
}

void FakeWindowServer::lower(WindowNumber number) {
  reinsert(number, [this] { return windows_.size(); });
}

void FakeWindowServer::placeAbove(WindowNumber number, WindowNumber sibling) {
  if (number == sibling || !find(sibling)) return raise(number);
  reinsert(number, [this, sibling] { return find(sibling) - windows_.data(); });
}

void FakeWindowServer::hide(WindowNumber number) {
  if (auto* w = find(number)) w->shown = false;
}

void FakeWindowServer::raiseWindowsOf(ProcessId owner) {
  std::stable_partition(windows_.begin(), windows_.end(),
                        [owner](const Window& w) { return w.owner == owner; });
  restack();
}

void FakeWindowServer::setLevel(WindowNumber number, int level) {
  if (auto* w = find(number)) w->level = level;
  restack();
}

void FakeWindowServer::setBounds(WindowNumber number, Rect bounds) {
  if (auto* w = find(number)) w->bounds = bounds;
}

bool FakeWindowServer::isCovered(WindowNumber number) const {
  const Rect inner = bounds(number);
  for (const auto& w : windows_) {
    if (w.number == number) return false;
    if (w.shown && inner.minX() >= w.bounds.minX() && inner.maxX() <= w.bounds.maxX() &&
        inner.minY() >= w.bounds.minY() && inner.maxY() <= w.bounds.maxY()) {
      return true;
    }
  }
  return false;
}

std::vector<WindowNumber> FakeWindowServer::stacking() const {
  std::vector<WindowNumber> numbers;
  for (const auto& w : windows_) {
    if (w.shown) numbers.push_back(w.number);
  }
  return numbers;
}

const FakeWindowServer::Window* FakeWindowServer::find(WindowNumber number) const {
  const auto it = std::find_if(windows_.begin(), windows_.end(),
                               [number](const Window& w) { return w.number == number; });
  return it == windows_.end() ? nullptr : &*it;
}

FakeWindowServer::Window* FakeWindowServer::find(WindowNumber number) {
  return const_cast<Window*>(std::as_const(*this).find(number));
}

void FakeWindowServer::restack() {
  std::stable_sort(windows_.begin(), windows_.end(),
                   [](const Window& a, const Window& b) { return a.level > b.level; });
}

void FakeWorkspace::activate(const RunningApplication& app) {
  if (std::find(running_.begin(), running_.end(), app) != running_.end()) bringToFront(app);
}

void FakeWorkspace::bringToFront(const RunningApplication& app) {
  if (front_ == app) return;
  server_.raiseWindowsOf(app.processIdentifier);
  front_ = app;
  didActivate_.call();
}

void FakeWorkspace::clearFront() {
  front_.reset();
  didActivate_.call();
}

}  // namespace orlet::test
