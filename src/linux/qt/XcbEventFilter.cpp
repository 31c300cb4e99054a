#include "linux/qt/XcbEventFilter.h"

#include <QByteArray>

namespace orlet::linux_qt {

bool XcbEventFilter::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType == QByteArrayLiteral("xcb_generic_event_t") && message) {
    source_.dispatch(*static_cast<const xcb_generic_event_t*>(message));
  }
  return false;
}

}  // namespace orlet::linux_qt
