#include "linux/qt/QtPanelFactory.h"

#include "linux/qt/QtPanel.h"

namespace orlet::linux_qt {

std::unique_ptr<Panel> QtPanelFactory::createPanel(const PanelConfig& config) {
  auto panel = std::make_unique<QtPanel>(config, x_, windows_);
  if (config.content == PanelContent::mirror && mirrorContent_) {
    if (auto* content = mirrorContent_()) panel->setContentWidget(content);
  }
  return panel;
}

}  // namespace orlet::linux_qt
