#pragma once

#include <QImage>
#include <QWidget>
#include <chrono>
#include <functional>

#include "foundation/Geometry.h"
#include "platform/CaptureFrame.h"

namespace orlet::linux_qt {

class BusyIndicator;

// Paints the latest frame of a display, aspect-fitted and centred, repainting only where it
// changed. Frames are expected at the size the picture is drawn (the capture reduces them; see
// setPictureSizeHandler) and are then copied one to one; frames of another size (the capture has
// not caught up with a resize yet) are scaled. Until a frame arrives (and after the capture
// stopped) it shows a loading indicator instead. A square picture is painted by an opaque child
// widget of exactly its rectangle, so that repainting part of it paints nothing underneath.
class FrameView final : public QWidget {
 public:
  struct Look {
    qreal cornerRadius = 0;
    int shadowRadius = 0;  // also the margin left around the picture for the shadow
    QString loadingText;
  };

  FrameView(Size displaySize, Look look, QWidget* parent = nullptr);

  void setFrame(FrameRef frame);
  // A short notice drawn over a dimmed picture (when the picture is no longer live); empty for
  // none.
  void setNotice(const QString& notice);
  const QString& notice() const { return notice_; }
  const FrameRef& frame() const { return frame_; }

  // Where the picture lies in this widget: the display's aspect fitted into the space left
  // inside the shadow margins.
  QRectF pictureRect() const;

  // Called with the size, in device pixels, frames are drawn without scaling: at each resize.
  void setPictureSizeHandler(std::function<void(QSize)> handler);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  class Surface;

  void paintPicture(QPainter& painter, const QRectF& picture);
  void paintSurface(QWidget& surface);
  void repaintAll();
  void countPaint(std::chrono::steady_clock::time_point started);
  void paintShadow(QPainter& painter, const QRectF& picture);
  void paintNotice(QPainter& painter, const QRectF& picture);
  const QImage& imageFor();
  // The picture's size in device pixels (HiDPI screens have more than one per logical pixel).
  QSize devicePictureSize() const;

  Size displaySize_;
  Look look_;
  FrameRef frame_;
  QString notice_;
  Surface* surface_ = nullptr;  // square pictures only
  BusyIndicator* loading_;
  QImage image_;   // frame_'s pixels, shared
  QImage scaled_;  // image_ scaled to the picture, when the frame is not of its size
  std::function<void(QSize)> pictureSizeHandler_;
  QImage shadow_;  // for shadowSize_; rebuilt only when the picture changes size
  QSizeF shadowSize_;
};

}  // namespace orlet::linux_qt
