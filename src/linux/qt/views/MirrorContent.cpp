#include "linux/qt/views/MirrorContent.h"

#include <cstdlib>

#include "linux/qt/views/DesktopSettings.h"
#include "linux/qt/views/WindowSelectorView.h"

namespace orlet::linux_qt {

MirrorContent::MirrorContent(const Ports& ports)
    : displayInfo_(ports.x),
      permission_(ports.x, x11::sessionKindFromEnvironment(&std::getenv), ports.scheduler,
                  &openPrivacySettings, ports.diagnostics),
      viewPorts_{ports.scheduler,
                 ports.notifications,
                 ports.capture,
                 permission_,
                 displayInfo_,
                 ports.isWindowVisible,
                 {},
                 {&displayInfo_, &ports.input, &ports.clickLog}} {}

QWidget* MirrorContent::makeView() {
  return new WindowSelectorView(viewPorts_);
}

}  // namespace orlet::linux_qt
