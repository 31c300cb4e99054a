#include "support/FakeWindowServer.h"

#include <algorithm>
#include <stdexcept>

namespace orlet::test {
namespace {

bool encloses(Rect outer, Rect inner) {
  return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() &&
         inner.minY() >= outer.minY() && inner.maxY() <= outer.maxY();
}

}  // namespace

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

void FakeWindowServer::raise(WindowNumber number) {
  auto window = take(number);
  window.shown = true;
  windows_.insert(windows_.begin(), window);
  restack();
}

void FakeWindowServer::lower(WindowNumber number) {
  auto window = take(number);
  window.shown = true;
  windows_.push_back(window);
  restack();
}

void FakeWindowServer::placeAbove(WindowNumber number, WindowNumber sibling) {
  if (number == sibling || !find(sibling)) {
    raise(number);
    return;
  }
  auto window = take(number);
  window.shown = true;
  const auto at = std::find_if(windows_.begin(), windows_.end(),
                               [sibling](const Window& w) { return w.number == sibling; });
  windows_.insert(at, window);
  restack();
}

void FakeWindowServer::hide(WindowNumber number) {
  if (auto* w = find(number)) w->shown = false;
}

void FakeWindowServer::raiseWindowsOf(ProcessId owner) {
  std::stable_partition(windows_.begin(), windows_.end(),
                        [owner](const Window& w) { return w.owner == owner; });
  restack();
}

bool FakeWindowServer::isShown(WindowNumber number) const {
  const auto* w = find(number);
  return w && w->shown;
}

int FakeWindowServer::level(WindowNumber number) const {
  const auto* w = find(number);
  return w ? w->level : 0;
}

void FakeWindowServer::setLevel(WindowNumber number, int level) {
  if (auto* w = find(number)) w->level = level;
  restack();
}

Rect FakeWindowServer::bounds(WindowNumber number) const {
  const auto* w = find(number);
  return w ? w->bounds : Rect{};
}

void FakeWindowServer::setBounds(WindowNumber number, Rect bounds) {
  if (auto* w = find(number)) w->bounds = bounds;
}

bool FakeWindowServer::isCovered(WindowNumber number) const {
  for (const auto& w : windows_) {
    if (w.number == number) return false;
    if (w.shown && encloses(w.bounds, bounds(number))) return true;
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

FakeWindowServer::Window* FakeWindowServer::find(WindowNumber number) {
  auto it = std::find_if(windows_.begin(), windows_.end(),
                         [number](const Window& w) { return w.number == number; });
  return it == windows_.end() ? nullptr : &*it;
}

const FakeWindowServer::Window* FakeWindowServer::find(WindowNumber number) const {
  auto it = std::find_if(windows_.begin(), windows_.end(),
                         [number](const Window& w) { return w.number == number; });
  return it == windows_.end() ? nullptr : &*it;
}

FakeWindowServer::Window FakeWindowServer::take(WindowNumber number) {
  auto it = std::find_if(windows_.begin(), windows_.end(),
                         [number](const Window& w) { return w.number == number; });
  if (it == windows_.end()) throw std::out_of_range("no such fake window");
  auto window = *it;
  windows_.erase(it);
  return window;
}

void FakeWindowServer::restack() {
  std::stable_sort(windows_.begin(), windows_.end(),
                   [](const Window& a, const Window& b) { return a.level > b.level; });
}

}  // namespace orlet::test
