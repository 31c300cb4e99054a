#pragma once

#include <memory>
#include <vector>

#include "foundation/HandlerList.h"
#include "platform/Panel.h"
#include "support/FakePanelButton.h"
#include "support/FakeWindowServer.h"

namespace orlet::test {

// A panel living in a FakeWindowServer: its frame, level, visibility and stacking are the
// server's, so tests read outcomes there. Like a real window system, a frame change made by the
// program is reported as didMove / didResize too.
class FakePanel final : public Panel {
 public:
  FakePanel(FakeWindowServer& server, const PanelConfig& config, ProcessId owner);
  ~FakePanel() override;

  WindowNumber windowNumber() const override { return number_; }
  void orderFrontRegardless() override { server_.raise(number_); }
  void orderOut() override { server_.hide(number_); }
  void orderBack() override { server_.lower(number_); }
  void orderAbove(WindowNumber sibling) override { server_.placeAbove(number_, sibling); }
  bool isVisible() const override { return server_.isShown(number_); }
  bool isMiniaturized() const override { return miniaturized_; }
  bool isOcclusionVisible() const override;
  PanelLevel level() const override;
  void setLevel(PanelLevel level) override;
  Rect frame() const override { return server_.bounds(number_); }
  void setFrame(Rect frame) override;
  void setFrameOrigin(Point origin) override;
  void setBackgroundColor(Color color) override { backgroundColor_ = color; }
  Subscription observe(PanelEvent event, std::function<void()> handler) override;
  Subscription addMouseMonitor(std::function<EventDisposition(const MouseEvent&)> monitor) override;
  std::unique_ptr<PanelButton> addButton(const PanelButtonConfig& config) override;

  const PanelConfig& config() const { return config_; }
  Color backgroundColor() const { return backgroundColor_; }
  void setMiniaturized(bool miniaturized) { miniaturized_ = miniaturized; }
  void whenDestroyed(std::function<void()> callback) { onDestroyed_ = std::move(callback); }

  // The user drags the panel to `origin` (or resizes it), with the reports a window manager
  // sends.
  void userMove(Point origin);
  void userResize(Size size);
  // Delivers a mouse event through the monitors; swallow when one of them stopped it.
  EventDisposition send(const MouseEvent& event);
  // The same at a global point; the location in the panel follows from its frame.
  EventDisposition send(MouseEventType type, Point screenLocation = {});

  // The overlay button in `corner`, nullptr if none.
  FakePanelButton* button(PanelCorner corner) const;

 private:
  void emit(PanelEvent event);

  FakeWindowServer& server_;
  PanelConfig config_;
  WindowNumber number_;
  bool miniaturized_ = false;
  Color backgroundColor_ = Color::white();
  HandlerList<> willMove_, didMove_, didResize_;
  HandlerList<const MouseEvent&, EventDisposition&> monitors_;
  std::vector<std::shared_ptr<FakePanelButton>> buttons_;
  std::function<void()> onDestroyed_;
};

}  // namespace orlet::test
