#include "linux/qt/views/ReducedPicture.h"

#include "capture/PixelRect.h"

namespace orlet::linux_qt {
namespace {

// Past this many waiting changes, their bounding box is reduced instead.
constexpr std::size_t maxPending = 32;

}  // namespace

QRect ReducedPicture::take(FrameRef frame, QSize size) {
  const bool follows = frame_ && frame && frame->sequence() != 0 &&
                       frame->sequence() == sequence_ + 1 && frame->width() == frame_->width() &&
                       frame->height() == frame_->height();
  frame_ = std::move(frame);
  sequence_ = frame_ ? frame_->sequence() : 0;
  if (!follows) stale_ = true;
  if (stale_ || !frame_) return QRect(QPoint(0, 0), size);
  const auto& changed = frame_->changed();
  pending_.insert(pending_.end(), changed.begin(), changed.end());
  if (pending_.size() > maxPending) pending_ = {boundingBox(pending_)};
  if (!reducer_ || reducer_->width() != size.width() || reducer_->height() != size.height()) {
    return QRect(QPoint(0, 0), size);
  }
  return affected(changed);
}

QRect ReducedPicture::affected(const std::vector<PixelRect>& changes) const {
  QRect area;
  for (const auto& change : changes) {
    const PixelRect r = reducer_->affected(change);
    area |= QRect(r.x, r.y, r.width, r.height);
  }
  return area;
}

void ReducedPicture::resize(QSize size) {
  reducer_.emplace(frame_->width(), frame_->height(), size.width(), size.height());
  reduced_ = Frame::allocate(size.width(), size.height());
  image_ = QImage(reduced_->pixels(), size.width(), size.height(),
                  static_cast<qsizetype>(reduced_->stride()), QImage::Format_RGB32);
  stale_ = true;
}

const QImage& ReducedPicture::image(QSize size) {
  static const QImage none;
  if (!frame_ || size.isEmpty()) return none;
  if (!reducer_ || reducer_->width() != size.width() || reducer_->height() != size.height() ||
      reducer_->sourceWidth() != frame_->width() || reducer_->sourceHeight() != frame_->height()) {
    resize(size);
  }
  if (stale_) {
    reducer_->reduce(*frame_, *reduced_, {0, 0, size.width(), size.height()});
  } else {
    // The filter's reach makes neighbouring changes overlap once widened: merged, no reduced
    // pixel is computed twice.
    std::vector<PixelRect> areas;
    areas.reserve(pending_.size());
    for (const auto& change : pending_) areas.push_back(reducer_->affected(change));
    mergeOverlapping(areas);
    for (const auto& area : areas) reducer_->reduce(*frame_, *reduced_, area);
  }
  stale_ = false;
  pending_.clear();
  return image_;
}

void ReducedPicture::clear() {
  frame_ = nullptr;
  sequence_ = 0;
  pending_.clear();
  stale_ = true;
}

}  // namespace orlet::linux_qt
