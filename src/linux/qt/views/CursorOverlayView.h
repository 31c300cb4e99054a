#pragma once

#include <QImage>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Subscription.h"
#include "platform/DisplayInfo.h"
#include "views/CursorTracker.h"

namespace orlet::linux_qt {

// Draws the system cursor on the enlarged mirror where the real pointer stands on the shown
// display, at the cursor's own size with its hot spot on the spot, with a soft shadow. Takes no
// clicks. Repaints only where the cursor was and where it now is.
class CursorOverlayView final : public QWidget {
 public:
  CursorOverlayView(std::shared_ptr<CursorTracker> tracker, const DisplayInfoProvider& displayInfo,
                    std::uint32_t displayId, QWidget* parent = nullptr);

  // Where the cursor is drawn now, in this widget's coordinates; nullopt when it is not.
  std::optional<QRectF> cursorRect() const { return drawn_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void place(Point position);
  void setCursorImage(const CursorImageRef& cursor);
  QRect area(const QRectF& cursor) const;  // the cursor with its shadow

  std::shared_ptr<CursorTracker> tracker_;
  const DisplayInfoProvider& displayInfo_;
  std::uint32_t displayId_;
  Rect displayBounds_;
  CursorImageRef cursor_;  // keeps the pixels image_ wraps
  QImage image_;
  QImage shadow_;
  std::optional<QRectF> drawn_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace orlet::linux_qt
