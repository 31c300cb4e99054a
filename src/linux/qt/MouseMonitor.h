#pragma once

#include <QObject>
#include <functional>

#include "foundation/HandlerList.h"
#include "platform/Panel.h"

class QMouseEvent;
class QWindow;

namespace orlet::linux_qt {

// Shows a panel's mouse presses, drags and releases to its monitors before any of its widgets
// gets them: it filters the events of the panel's top-level QWindow, which receives them first.
class MouseMonitor final : public QObject {
 public:
  using Monitor = std::function<EventDisposition(const MouseEvent&)>;

  explicit MouseMonitor(QWindow& window);

  [[nodiscard]] Subscription add(Monitor monitor);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::optional<MouseEvent> translate(const QMouseEvent& event) const;
  bool followsOwnPress(MouseEventType type);

  QWindow& window_;
  HandlerList<const MouseEvent&, EventDisposition&> monitors_;
  bool leftPressed_ = false;
};

}  // namespace orlet::linux_qt
