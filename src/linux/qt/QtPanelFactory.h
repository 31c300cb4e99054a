#pragma once

#include <functional>

#include "linux/x11/XConnection.h"
#include "platform/Panel.h"

class QWidget;

namespace orlet::linux_qt {

class QtPanelFactory final : public PanelFactory {
 public:
  QtPanelFactory(const x11::XConnection& x, const WindowServer& windows)
      : x_(x), windows_(windows) {}

  std::unique_ptr<Panel> createPanel(const PanelConfig& config) override;

  // Builds the content of each mirror panel created from now on (the views); without it the
  // mirror shows its empty background.
  void setMirrorContent(std::function<QWidget*()> make) { mirrorContent_ = std::move(make); }

 private:
  const x11::XConnection& x_;
  const WindowServer& windows_;
  std::function<QWidget*()> mirrorContent_;
};

}  // namespace orlet::linux_qt
