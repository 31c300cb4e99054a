#include "linux/qt/views/CursorOverlayView.h"

#include <QPaintEvent>
#include <QPainter>

#include "linux/qt/views/SoftShadow.h"
#include "views/MirrorGeometry.h"

namespace orlet::linux_qt {
namespace {

// Black at 40 % opacity, blurred over 3 points, offset 2 points right and down.
constexpr int kShadowRadius = 3;
constexpr QPointF kShadowOffset{2, 2};
const QColor kShadowColor{0, 0, 0, 102};

}  // namespace

CursorOverlayView::CursorOverlayView(std::shared_ptr<CursorTracker> tracker,
                                     const DisplayInfoProvider& displayInfo,
                                     std::uint32_t displayId, QWidget* parent)
    : QWidget(parent),
      tracker_(std::move(tracker)),
      displayInfo_(displayInfo),
      displayId_(displayId),
      displayBounds_(displayInfo.bounds(displayId)) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  // The position is published last of a sample's three values, so the image and hot spot are
  // already those of this sample: one placement per sample. Observers run before the value is
  // stored, hence the argument.
  subscriptions_.push_back(
      tracker_->mouseScreenPosition.observe([this](const Point& position) { place(position); }));
}

void CursorOverlayView::showEvent(QShowEvent*) {
  displayBounds_ = displayInfo_.bounds(displayId_);
}

void CursorOverlayView::resizeEvent(QResizeEvent*) {
  place(tracker_->mouseScreenPosition.get());
}

void CursorOverlayView::setCursorImage(const CursorImageRef& cursor) {
  if (cursor == cursor_) return;
  cursor_ = cursor;
  if (!cursor_) {
    image_ = shadow_ = QImage();
    return;
  }
  // Wraps the shared pixels without copying them.
  image_ = QImage(reinterpret_cast<const uchar*>(cursor_->argb.data()), cursor_->width,
                  cursor_->height, QImage::Format_ARGB32_Premultiplied);
  shadow_ = softShadow(image_, kShadowRadius, kShadowColor);
}

QRect CursorOverlayView::area(const QRectF& cursor) const {
  return cursor.united(cursor.translated(kShadowOffset))
      .adjusted(-kShadowRadius, -kShadowRadius, kShadowRadius, kShadowRadius)
      .toAlignedRect();
}

void CursorOverlayView::place(Point position) {
  const auto previous = drawn_;
  const CursorImageRef cursor = tracker_->cursorImage.get();
  const bool newShape = cursor != cursor_;
  setCursorImage(cursor);
  drawn_.reset();
  if (cursor_) {
    // The cursor's pixels are device pixels; the widget works in logical ones.
    const double ratio = devicePixelRatioF();
    const CursorSample sample{{cursor_->width / ratio, cursor_->height / ratio},
                              {tracker_->hotSpot->x / ratio, tracker_->hotSpot->y / ratio},
                              position};
    if (const auto frame =
            cursorFrame(displayBounds_, {double(width()), double(height())}, sample)) {
      drawn_ = QRectF(frame->x, frame->y, frame->width, frame->height);
    }
  }
  if (drawn_ == previous && !newShape) return;
  if (previous) update(area(*previous));
  if (drawn_) update(area(*drawn_));
}

void CursorOverlayView::paintEvent(QPaintEvent*) {
  if (!drawn_ || image_.isNull()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QPointF shadowAt =
      drawn_->topLeft() + kShadowOffset - QPointF(kShadowRadius, kShadowRadius);
  painter.drawImage(QRectF(shadowAt, drawn_->size() + QSizeF(2 * kShadowRadius, 2 * kShadowRadius)),
                    shadow_);
  painter.drawImage(*drawn_, image_);
}

}  // namespace orlet::linux_qt
