#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "foundation/Geometry.h"
#include "platform/Panel.h"

namespace orlet::linux_qt {

class ResizeGrip;

// The top-level widget of a panel: a frameless window that never takes the focus, painting its
// face (the floating button) or its background and content (the mirror). Dragging its
// background moves it: the round button moves itself, so that its own pointer events keep
// arriving; the mirror hands the move to the window manager.
class PanelWidget final : public QWidget {
 public:
  struct Callbacks {
    std::function<void()> geometryChanged;     // after Qt's move and resize events
    std::function<void(Point origin)> dragTo;  // a self-move, global device pixels
    std::function<void()> cancelSystemDrag;    // the window manager came too late
    std::function<void()> systemMoveStarted;   // the window manager now moves the panel
    std::function<void()> painted;             // on screen: the server exposed the window
  };

  PanelWidget(const PanelConfig& config, Callbacks callbacks);

  void setBackgroundColor(const QColor& color);
  // The widget filling the mirror's content area; the overlay buttons and grips stay above it.
  void setContent(QWidget* content);
  QWidget* content() const { return content_; }
  // Keeps the overlays (buttons, grips) above the content after one is added.
  void raiseOverlays();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void dragWith(const QMouseEvent& event);
  void startSystemMove();
  struct SelfDrag {
    Point pointerAtPress;
    Point originAtPress;
  };

  void configureWindow();
  void addGrips();
  void layoutChildren();

  PanelConfig config_;
  Callbacks callbacks_;
  QColor background_;
  QPointer<QWidget> content_;
  std::vector<ResizeGrip*> grips_;
  std::optional<SelfDrag> selfDrag_;
  // Where a press on the background was, until the pointer moves far enough to make it a drag.
  std::optional<QPointF> systemMovePending_;
  bool systemMoveRequested_ = false;
};

}  // namespace orlet::linux_qt
