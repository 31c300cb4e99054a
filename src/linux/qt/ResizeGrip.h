#pragma once

#include <QWidget>
#include <functional>

namespace orlet::linux_qt {

// How far the pointer goes, button down, before a press on a panel's background becomes a move
// handed to the window manager. Asked for at the press itself, some window managers (xfwm4,
// metacity) start it even when the button is already up again by the time they read the
// request, and then hold the pointer until the next click, which they swallow to end it.
inline constexpr qreal systemDragThreshold = 3;

// An invisible strip along an edge or a square at a corner of a resizable panel. A press on it
// hands the resize to the window manager (_NET_WM_MOVERESIZE), as a frame's border would; a
// release that still reaches us means the window manager came too late, and `cancel` runs.
// (Handed over at the press, unlike a move: on a busy machine a resize asked only once the
// pointer has moved comes after a quick drag is already over.)
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
