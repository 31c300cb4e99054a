#pragma once

#include <QWidget>
#include <functional>

#include "views/ClickIntercept.h"

namespace orlet::linux_qt {

// The click overlay of the enlarged mirror: covers the view, but only the picture takes
// presses (a mask), so presses on the letterbox bands reach the panel beneath, which moves.
// A press on the picture never moves the panel.
class ClickInterceptView final : public QWidget {
 public:
  ClickInterceptView(double displayAspect, std::function<void(Point)> onRelativeClick,
                     QWidget* parent = nullptr);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  Rect bounds() const { return {0, 0, double(width()), double(height())}; }

  ClickIntercept intercept_;
};

}  // namespace orlet::linux_qt
