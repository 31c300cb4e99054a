#include "linux/qt/ResizeGrip.h"

#include <QMouseEvent>
#include <QWindow>
#include <utility>

namespace orlet::linux_qt {
namespace {

Qt::CursorShape cursorFor(Qt::Edges edges) {
  const bool horizontal = edges & (Qt::LeftEdge | Qt::RightEdge);
  const bool vertical = edges & (Qt::TopEdge | Qt::BottomEdge);
  if (horizontal && vertical) {
    const bool falling =
        edges == (Qt::TopEdge | Qt::LeftEdge) || edges == (Qt::BottomEdge | Qt::RightEdge);
    return falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
  }
  return horizontal ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

}  // namespace

ResizeGrip::ResizeGrip(Qt::Edges edges, QWidget& panel, std::function<void()> cancel)
    : QWidget(&panel), edges_(edges), cancel_(std::move(cancel)) {
  setCursor(cursorFor(edges));
  setAttribute(Qt::WA_NoSystemBackground);
}

void ResizeGrip::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  if (auto* handle = window()->windowHandle()) handedOver_ = handle->startSystemResize(edges_);
  event->accept();
}

void ResizeGrip::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && std::exchange(handedOver_, false) && cancel_) cancel_();
  QWidget::mouseReleaseEvent(event);
}

}  // namespace orlet::linux_qt
