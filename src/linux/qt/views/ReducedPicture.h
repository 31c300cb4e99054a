#pragma once

#include <QImage>
#include <QRect>
#include <memory>
#include <optional>
#include <vector>

#include "capture/PictureReducer.h"
#include "platform/CaptureFrame.h"

namespace orlet::linux_qt {

// A display's frames reduced to the size they are shown at, once per change and only where they
// changed: painting then copies pixels one to one instead of scaling the whole frame each time.
class ReducedPicture {
 public:
  // Takes the next frame; the part of the picture (of `size`, its own coordinates) to repaint.
  QRect take(FrameRef frame, QSize size);
  // The picture at `size`, brought up to date; null without a frame.
  const QImage& image(QSize size);
  void clear();

 private:
  void resize(QSize size);
  QRect affected(const std::vector<PixelRect>& changes) const;

  FrameRef frame_;
  std::uint64_t sequence_ = 0;
  std::optional<PictureReducer> reducer_;
  std::shared_ptr<Frame> reduced_;
  QImage image_;
  std::vector<PixelRect> pending_;  // source rectangles not reduced yet
  bool stale_ = true;               // everything must be reduced again
};

}  // namespace orlet::linux_qt
