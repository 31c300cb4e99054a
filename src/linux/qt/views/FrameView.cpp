#include "linux/qt/views/FrameView.h"

#include <QPainter>
#include <QPainterPath>
#include <QResizeEvent>

#include "linux/qt/views/BusyIndicator.h"
#include "linux/qt/views/SoftShadow.h"
#include "linux/qt/views/ViewStyle.h"
#include "views/MirrorGeometry.h"

namespace orlet::linux_qt {
namespace {

// The platform's default shadow colour: black at a third of full opacity.
const QColor kShadowColor(0, 0, 0, 85);
// Over a picture that is no longer live: dark enough to read white text on any picture.
const QColor kVeilColor(0, 0, 0, 150);

// The frame's own pixels seen as an image: no copy. Valid while `frame` lives.
QImage imageOver(const Frame& frame) {
  return QImage(frame.pixels(), frame.width(), frame.height(),
                static_cast<qsizetype>(frame.stride()), QImage::Format_RGB32);
}

}  // namespace

FrameView::FrameView(Size displaySize, Look look, QWidget* parent)
    : QWidget(parent),
      displaySize_(displaySize),
      look_(std::move(look)),
      loading_(new BusyIndicator(look_.loadingText, 1.0, this)) {
  const int margin = look_.shadowRadius;
  setContentsMargins(margin, margin, margin, margin);
  setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void FrameView::setFrame(FrameRef frame) {
  const bool had = frame_ != nullptr;
  frame_ = std::move(frame);
  if (had != (frame_ != nullptr)) loading_->setVisible(frame_ == nullptr);
  update();
}

void FrameView::setNotice(const QString& notice) {
  if (notice == notice_) return;
  notice_ = notice;
  update();
}

QRectF FrameView::pictureRect() const {
  const QRect inner = contentsRect();
  const Rect fit = mirrorPictureRect(displaySize_, {double(inner.width()), double(inner.height())});
  return QRectF(inner.x() + fit.x, inner.y() + fit.y, fit.width, fit.height);
}

void FrameView::resizeEvent(QResizeEvent*) {
  loading_->setGeometry(contentsRect());
}

void FrameView::paintShadow(QPainter& painter, const QRectF& picture) {
  if (look_.shadowRadius <= 0) return;
  if (shadow_.isNull() || shadowSize_ != picture.size()) {
    shadow_ = softShadow(picture.size(), look_.cornerRadius, look_.shadowRadius, kShadowColor);
    shadowSize_ = picture.size();
  }
  painter.drawImage(picture.topLeft() - QPointF(look_.shadowRadius, look_.shadowRadius), shadow_);
}

void FrameView::paintEvent(QPaintEvent*) {
  // Holding the reference keeps the pixels alive for the whole paint, whatever arrives meanwhile.
  const FrameRef frame = frame_;
  if (!frame) return;
  const QRectF picture = pictureRect();
  if (picture.isEmpty()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  paintShadow(painter, picture);

  QPainterPath shape;
  shape.addRoundedRect(picture, look_.cornerRadius, look_.cornerRadius);
  // A textured fill gives rounded corners with smooth edges, where clipping would leave them
  // jagged; for square corners the plain image path is the fastest.
  const QImage image = imageOver(*frame);
  QBrush texture(image);
  QTransform toPicture;
  toPicture.translate(picture.x(), picture.y());
  toPicture.scale(picture.width() / frame->width(), picture.height() / frame->height());
  texture.setTransform(toPicture);

  // The frame's fourth byte is padding, not opacity: copy the colours (blending only the
  // antialiased edge by its coverage), then make the covered area opaque.
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  if (look_.cornerRadius > 0) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, texture);
  } else {
    painter.drawImage(picture, image);
  }
  painter.setCompositionMode(QPainter::CompositionMode_Plus);
  painter.fillPath(shape, Qt::black);
  if (!notice_.isEmpty()) {
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.fillPath(shape, kVeilColor);
    paintNotice(painter, picture);
  }
}

void FrameView::paintNotice(QPainter& painter, const QRectF& picture) {
  painter.setFont(look_.cornerRadius > 0 ? style::captionFont() : style::headlineFont());
  painter.setPen(Qt::white);
  painter.drawText(picture, Qt::AlignCenter | Qt::TextWordWrap, notice_);
}

}  // namespace orlet::linux_qt
