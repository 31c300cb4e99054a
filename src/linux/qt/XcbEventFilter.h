#pragma once

#include <QAbstractNativeEventFilter>

#include "linux/x11/XEventSource.h"

namespace orlet::linux_qt {

// Shows every XCB event Qt reads to the X11 adapters, then lets Qt handle it.
class XcbEventFilter final : public QAbstractNativeEventFilter {
 public:
  explicit XcbEventFilter(x11::XEventSource& source) : source_(source) {}

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

 private:
  x11::XEventSource& source_;
};

}  // namespace orlet::linux_qt
