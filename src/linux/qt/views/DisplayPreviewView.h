#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/Subscription.h"
#include "linux/qt/views/MirrorViewPorts.h"
#include "views/DisplayPreviewModel.h"

class QLabel;
class QLayout;
class QToolButton;

namespace orlet::linux_qt {

class DetailsPopover;
class FrameView;

// One display, live: as a card of the grid (thumbnail, name, "•••" details) or as the enlarged
// mirror filling the panel. Captures while shown, stops when hidden.
class DisplayPreviewView final : public QWidget {
 public:
  DisplayPreviewView(const MirrorViewPorts& ports, Display display, bool isExpanded,
                     std::function<void()> onBack, int displayIndex, QWidget* parent = nullptr);
  ~DisplayPreviewView() override;

  DisplayPreviewModel& model() { return model_; }

  // Card form: called on a click on the card outside its "•••" button.
  void setOnTap(std::function<void()> onTap) { onTap_ = std::move(onTap); }

  // Mirror form: the layers above the picture (click overlay, cursor overlay, position probe),
  // in the order added, each covering the whole view. They place themselves with
  // pictureRect(), the one rectangle the picture is drawn in.
  void addOverlay(QWidget* overlay);
  QRectF pictureRect() const;

  // For tests and screenshots: the card's details popover, once opened.
  DetailsPopover* popover() const { return popover_; }
  QToolButton* infoButton() const { return infoButton_; }

  QSize sizeHint() const override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void buildCard();
  QLayout* buildCaptionRow();
  void buildMirror();
  void showInfo(bool show);

  DisplayPreviewModel model_;
  FrameView* frameView_ = nullptr;
  QLabel* caption_ = nullptr;
  QToolButton* infoButton_ = nullptr;
  DetailsPopover* popover_ = nullptr;
  std::vector<QWidget*> overlays_;
  std::function<void()> onTap_;
  std::vector<Subscription> subscriptions_;
  bool appeared_ = false;
};

}  // namespace orlet::linux_qt
