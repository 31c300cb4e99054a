#pragma once

#include <memory>
#include <optional>

#include "foundation/HandlerList.h"
#include "linux/qt/MouseMonitor.h"
#include "linux/qt/PanelWidget.h"
#include "linux/x11/X11PanelWindow.h"
#include "platform/Panel.h"

namespace orlet::linux_qt {

// A panel as a Qt top-level widget on X11: a frameless, never-focused, sticky window without a
// taskbar entry, ordered and restacked through the window manager (EWMH).
class QtPanel final : public Panel {
 public:
  QtPanel(const PanelConfig& config, const x11::XConnection& x, const WindowServer& windows);
  ~QtPanel() override;

  WindowNumber windowNumber() const override;
  void orderFrontRegardless() override;
  void orderOut() override;
  void orderBack() override;
  void orderAbove(WindowNumber sibling) override;
  bool isVisible() const override;
  bool isMiniaturized() const override;
  bool isOcclusionVisible() const override;
  PanelLevel level() const override { return level_; }
  void setLevel(PanelLevel level) override;
  Rect frame() const override;
  void setFrame(Rect frame) override;
  void setFrameOrigin(Point origin) override;
  void setBackgroundColor(Color color) override;
  Subscription observe(PanelEvent event, std::function<void()> handler) override;
  Subscription addMouseMonitor(std::function<EventDisposition(const MouseEvent&)> monitor) override;
  std::unique_ptr<PanelButton> addButton(const PanelButtonConfig& config) override;

  // The mirror's content area (an empty widget until the views set theirs); the panel takes
  // ownership.
  void setContentWidget(QWidget* content);
  PanelWidget& widget() const { return *widget_; }

 private:
  void map();
  void restackOnceMapped(std::function<void()> restack);
  void onScreen();
  void geometryChanged();
  void systemMoveStarted();
  void dragTo(Point origin);
  HandlerList<>& handlers(PanelEvent event);

  const WindowServer& windows_;
  PanelConfig config_;
  PanelLevel level_;
  std::unique_ptr<PanelWidget> widget_;
  std::optional<x11::X11PanelWindow> x11_;
  std::optional<MouseMonitor> mouseMonitor_;
  HandlerList<> willMove_, didMove_, didResize_;
  Rect reported_;                         // the frame last reported to observers
  std::optional<Point> requestedOrigin_;  // a move asked by the program, not the user
  bool userMoving_ = false;
  std::function<void()> pendingRestack_;  // to ask again once the window is on screen
};

}  // namespace orlet::linux_qt
