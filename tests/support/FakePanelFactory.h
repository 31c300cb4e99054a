#pragma once

#include <memory>
#include <vector>

#include "platform/Panel.h"
#include "support/FakePanel.h"
#include "support/FakeWindowServer.h"

namespace orlet::test {

// Makes FakePanels owned by `owner` (our own process) and keeps track of those still alive.
class FakePanelFactory final : public PanelFactory {
 public:
  FakePanelFactory(FakeWindowServer& server, ProcessId owner);

  std::unique_ptr<Panel> createPanel(const PanelConfig& config) override;

  // The most recently made live panel with that content, nullptr if none.
  FakePanel* panel(PanelContent content) const;
  // Simulates a window system that refuses new windows.
  void setFailing(bool failing) { failing_ = failing; }

 private:
  FakeWindowServer& server_;
  ProcessId owner_;
  bool failing_ = false;
  std::shared_ptr<std::vector<FakePanel*>> live_ = std::make_shared<std::vector<FakePanel*>>();
};

}  // namespace orlet::test
