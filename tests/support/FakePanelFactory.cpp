#include "support/FakePanelFactory.h"

#include <algorithm>

namespace orlet::test {

FakePanelFactory::FakePanelFactory(FakeWindowServer& server, ProcessId owner)
    : server_(server), owner_(owner) {}

std::unique_ptr<Panel> FakePanelFactory::createPanel(const PanelConfig& config) {
  if (failing_) return nullptr;
  auto panel = std::make_unique<FakePanel>(server_, config, owner_);
  live_->push_back(panel.get());
  panel->whenDestroyed([live = std::weak_ptr(live_), raw = panel.get()] {
    if (auto list = live.lock()) std::erase(*list, raw);
  });
  return panel;
}

FakePanel* FakePanelFactory::panel(PanelContent content) const {
  auto it = std::find_if(live_->rbegin(), live_->rend(),
                         [content](const FakePanel* p) { return p->config().content == content; });
  return it == live_->rend() ? nullptr : *it;
}

}  // namespace orlet::test
