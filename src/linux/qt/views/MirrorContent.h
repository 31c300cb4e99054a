#pragma once

#include <QWidget>
#include <functional>
#include <iosfwd>

#include "linux/qt/views/MirrorViewPorts.h"
#include "linux/x11/RandrDisplayInfo.h"
#include "linux/x11/X11ScreenCapturePermission.h"
#include "platform/SyntheticInput.h"

namespace orlet::linux_qt {

// The mirror panel's views with their X11 display information and permission, ready for
// QtPanelFactory::setMirrorContent. Everything passed in must outlive this object, which must
// outlive the panels built with it.
class MirrorContent {
 public:
  struct Ports {
    const x11::XConnection& x;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    CaptureService& capture;
    std::function<bool()> isWindowVisible;  // the mirror panel is on screen
    std::ostream& diagnostics;              // where a refused permission is explained
    SyntheticInput& input;                  // replays clicks on the mirror
    std::ostream& clickLog;                 // one line per replayed click
  };

  explicit MirrorContent(const Ports& ports);
  MirrorContent(const MirrorContent&) = delete;
  MirrorContent& operator=(const MirrorContent&) = delete;

  // Builds a new selector view (the panel takes ownership).
  QWidget* makeView();

  // Where later features attach their layers to every enlarged mirror.
  void setMirrorDecorator(std::function<void(DisplayPreviewView&, DisplayManager&)> decorate) {
    viewPorts_.decorateMirror = std::move(decorate);
  }

  const DisplayInfoProvider& displayInfo() const { return displayInfo_; }

 private:
  x11::RandrDisplayInfo displayInfo_;
  x11::X11ScreenCapturePermission permission_;
  MirrorViewPorts viewPorts_;
};

}  // namespace orlet::linux_qt
