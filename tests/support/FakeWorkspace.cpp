#include "support/FakeWorkspace.h"

#include <algorithm>

namespace orlet::test {

void FakeWorkspace::activate(const RunningApplication& app) {
  if (std::find(running_.begin(), running_.end(), app) != running_.end()) bringToFront(app);
}

void FakeWorkspace::bringToFront(const RunningApplication& app) {
  if (front_ == app) return;
  server_.raiseWindowsOf(app.processIdentifier);
  front_ = app;
  notifyDidActivate();
}

void FakeWorkspace::clearFront() {
  front_.reset();
  notifyDidActivate();
}

void FakeWorkspace::notifyDidActivate() const {
  didActivate_.call();
}

}  // namespace orlet::test
