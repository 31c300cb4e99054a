#include "linux/qt/views/ClickInterceptView.h"

#include <QMouseEvent>
#include <QRegion>

namespace orlet::linux_qt {
namespace {

Point pointOf(const QMouseEvent& event) {
  return {event.position().x(), event.position().y()};
}

}  // namespace

ClickInterceptView::ClickInterceptView(double displayAspect,
                                       std::function<void(Point)> onRelativeClick, QWidget* parent)
    : QWidget(parent) {
  intercept_.displayAspect = displayAspect;
  intercept_.onRelativeClick = std::move(onRelativeClick);
  setAttribute(Qt::WA_NoSystemBackground);
  setFocusPolicy(Qt::NoFocus);
}

// The mask is whole pixels around the picture; presses on the fraction of a pixel it adds are
// still refused by the hit test.
void ClickInterceptView::resizeEvent(QResizeEvent*) {
  const Rect picture = intercept_.effectiveRect(bounds());
  setMask(QRegion(QRectF(picture.x, picture.y, picture.width, picture.height).toAlignedRect()));
}

void ClickInterceptView::mousePressEvent(QMouseEvent* event) {
  event->accept();
  if (event->button() != Qt::LeftButton) return;
  intercept_.mouseDown(bounds(), pointOf(*event));
}

void ClickInterceptView::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  if (event->button() != Qt::LeftButton) return;
  intercept_.mouseUp(bounds(), pointOf(*event));
}

}  // namespace orlet::linux_qt
