#include "linux/qt/views/FrameView.h"

#include <QPainter>
#include <QPainterPath>
#include <QResizeEvent>
#include <QTimer>
#include <chrono>

#include "foundation/RenderCounters.h"
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
// Long enough for a window manager to have answered the panel's change of state.
constexpr std::chrono::milliseconds kRepaintFirstAfter{300};

// Where the reduced picture is drawn: the picture's rectangle on whole pixels, so that it is
// copied one to one.
QRect pixelRect(const QRectF& picture) {
  return picture.toRect();
}

}  // namespace

// Every pixel of a square picture is opaque and painted: with a widget of its own that says so,
// repainting a changed part draws that part of the picture and nothing else, where the view
// would first have the panel paint its background (a gradient) under it, only to cover it.
class FrameView::Surface final : public QWidget {
 public:
  explicit Surface(FrameView* view) : QWidget(view), view_(view) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();  // until there is a picture
  }

 protected:
  void paintEvent(QPaintEvent*) override { view_->paintSurface(*this); }

 private:
  FrameView* view_;
};

FrameView::FrameView(Size displaySize, Look look, QWidget* parent)
    : QWidget(parent),
      displaySize_(displaySize),
      look_(std::move(look)),
      loading_(new BusyIndicator(look_.loadingText, 1.0, this)) {
  if (look_.cornerRadius <= 0 && look_.shadowRadius <= 0) surface_ = new Surface(this);
  const int margin = look_.shadowRadius;
  setContentsMargins(margin, margin, margin, margin);
  setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void FrameView::setFrame(FrameRef frame) {
  const bool had = frame_ != nullptr;
  const FrameRef previous = std::move(frame_);
  frame_ = std::move(frame);
  if (had != (frame_ != nullptr)) {
    loading_->setVisible(frame_ == nullptr);
    if (surface_) surface_->setVisible(frame_ != nullptr);
  }
  scaled_ = QImage();
  if (!frame_) {
    image_ = QImage();
    return update();
  }
  // Format_RGB32 is the frames' own layout: the image shares their pixels.
  image_ = QImage(frame_->pixels(), frame_->width(), frame_->height(),
                  static_cast<qsizetype>(frame_->stride()), QImage::Format_RGB32);
  image_.setDevicePixelRatio(devicePixelRatioF());
  if (!had) {
    // A compositing window manager (Mutter) can keep showing what a window held before its
    // last change of state until the window paints again after it; a still display sends no
    // second picture, so the first one is painted once more a moment later.
    QTimer::singleShot(kRepaintFirstAfter, this, [this] { repaintAll(); });
    return repaintAll();  // the shadow too
  }
  const QRect target = pixelRect(pictureRect());
  const bool follows = frame_->sequence() != 0 && frame_->sequence() == previous->sequence() + 1 &&
                       frame_->width() == previous->width() &&
                       frame_->height() == previous->height() &&
                       image_.size() == devicePictureSize();
  QRect changed = QRect(QPoint(0, 0), target.size());
  if (follows) {
    QRect pixels;
    for (const auto& r : frame_->changed()) pixels |= QRect(r.x, r.y, r.width, r.height);
    changed = QRectF(QPointF(pixels.topLeft()) / devicePixelRatioF(),
                     QSizeF(pixels.size()) / devicePixelRatioF())
                  .toAlignedRect();
  }
  if (surface_) return surface_->update(changed);
  // One pixel more on each side: the antialiased rounded edge blends with its neighbours.
  update(changed.translated(target.topLeft()).adjusted(-1, -1, 1, 1));
}

void FrameView::repaintAll() {
  // The surface is repainted for its own sake: Qt leaves an opaque child out of its parent's
  // repaint, since it paints all of itself.
  update();
  if (surface_) surface_->update();
}

void FrameView::setPictureSizeHandler(std::function<void(QSize)> handler) {
  pictureSizeHandler_ = std::move(handler);
  if (pictureSizeHandler_) pictureSizeHandler_(devicePictureSize());
}

void FrameView::setNotice(const QString& notice) {
  if (notice == notice_) return;
  notice_ = notice;
  repaintAll();
}

QRectF FrameView::pictureRect() const {
  const QRect inner = contentsRect();
  const Rect fit = mirrorPictureRect(displaySize_, {double(inner.width()), double(inner.height())});
  return QRectF(inner.x() + fit.x, inner.y() + fit.y, fit.width, fit.height);
}

QSize FrameView::devicePictureSize() const {
  const QSize logical = pixelRect(pictureRect()).size();
  const qreal ratio = devicePixelRatioF();
  return QSize(qRound(logical.width() * ratio), qRound(logical.height() * ratio));
}

void FrameView::resizeEvent(QResizeEvent*) {
  loading_->setGeometry(contentsRect());
  if (surface_) surface_->setGeometry(pixelRect(pictureRect()));
  if (pictureSizeHandler_) pictureSizeHandler_(devicePictureSize());
}

const QImage& FrameView::imageFor() {
  // Reduced frames are opaque and come at the picture's size in device pixels. Anything else (the
  // display's own pixels, whose padding byte the server leaves at zero, or a frame of a size the
  // capture has not caught up with yet) is made opaque and scaled, once per frame.
  const QSize size = devicePictureSize();
  const bool reduced = image_.width() < displaySize_.width || image_.height() < displaySize_.height;
  if (reduced && image_.size() == size) return image_;
  if (scaled_.size() != size) {
    scaled_ = image_.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                  .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled_.setDevicePixelRatio(devicePixelRatioF());
  }
  return scaled_;
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
  if (!frame || surface_) return;
  const QRectF picture = pictureRect();
  if (picture.isEmpty()) return;
  const auto started = std::chrono::steady_clock::now();
  QPainter painter(this);
  paintShadow(painter, picture);
  paintPicture(painter, picture);
  countPaint(started);
}

void FrameView::paintSurface(QWidget& surface) {
  const FrameRef frame = frame_;
  if (!frame || surface.rect().isEmpty()) return;
  const auto started = std::chrono::steady_clock::now();
  QPainter painter(&surface);
  paintPicture(painter, QRectF(surface.rect()));
  countPaint(started);
}

void FrameView::countPaint(std::chrono::steady_clock::time_point started) {
  auto& counters = RenderCounters::process();
  counters.framesPainted.fetch_add(1, std::memory_order_relaxed);
  counters.paintNanoseconds.fetch_add(
      std::uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(
                        std::chrono::steady_clock::now() - started)
                        .count()),
      std::memory_order_relaxed);
}

void FrameView::paintPicture(QPainter& painter, const QRectF& picture) {
  const QRect target = pixelRect(picture);
  QPainterPath shape;
  shape.addRoundedRect(QRectF(target), look_.cornerRadius, look_.cornerRadius);
  // A textured fill gives rounded corners with smooth edges, where clipping would leave them
  // jagged; for square corners the plain image path is the fastest. The picture is opaque: copying
  // it (blending only the antialiased edge by its coverage) is enough.
  const QImage& image = imageFor();
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  if (look_.cornerRadius > 0) {
    QBrush texture(image);
    texture.setTransform(QTransform::fromTranslate(target.x(), target.y()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, texture);
  } else {
    painter.drawImage(target.topLeft(), image);
  }
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
