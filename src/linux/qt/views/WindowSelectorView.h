#pragma once

#include <QWidget>
#include <memory>

#include "foundation/Subscription.h"
#include "linux/qt/views/MirrorViewPorts.h"
#include "views/WindowSelectorModel.h"

namespace orlet::linux_qt {

class BusyIndicator;
class DisplayGridView;
class DisplayPreviewView;
class PermissionCardView;
class UnreadableScreenView;

// The mirror panel's content: over a gradient, the permission card, the loading indicator,
// the grid of displays or the enlarged mirror of the chosen one; instead of an empty grid, why
// the screen cannot be read.
class WindowSelectorView final : public QWidget {
 public:
  explicit WindowSelectorView(const MirrorViewPorts& ports, QWidget* parent = nullptr);
  ~WindowSelectorView() override;

  WindowSelectorModel& model() { return model_; }

  // The parts, for tests and screenshots; `enlarged` is null unless a display is chosen.
  PermissionCardView* permissionCard() const { return card_; }
  BusyIndicator* loadingIndicator() const { return loading_; }
  DisplayGridView* grid() const { return grid_; }
  DisplayPreviewView* enlarged() const { return enlarged_.get(); }
  UnreadableScreenView* unreadableScreen() const { return unreadable_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void render();
  void renderEnlarged();
  void layoutParts();

  MirrorViewPorts ports_;
  WindowSelectorModel model_;
  PermissionCardView* card_;
  BusyIndicator* loading_;
  DisplayGridView* grid_;
  UnreadableScreenView* unreadable_;
  std::unique_ptr<DisplayPreviewView> enlarged_;
  Subscription changes_;
  bool appeared_ = false;
};

}  // namespace orlet::linux_qt
