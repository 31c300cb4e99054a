#pragma once

#include <QWidget>
#include <functional>

namespace orlet::linux_qt {

// An invisible strip along an edge or a square at a corner of a resizable panel. A press on it
// hands the resize to the window manager (_NET_WM_MOVERESIZE), as a frame's border would; a
// release that still reaches us means the window manager came too late, and `cancel` runs.
class ResizeGrip final : public QWidget {
 public:
  ResizeGrip(Qt::Edges edges, QWidget& panel, std::function<void()> cancel);

  Qt::Edges edges() const { return edges_; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  Qt::Edges edges_;
  std::function<void()> cancel_;
  bool handedOver_ = false;
};

}  // namespace orlet::linux_qt
