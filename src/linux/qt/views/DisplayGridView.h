#pragma once

#include <QScrollArea>
#include <functional>
#include <vector>

#include "linux/qt/views/MirrorViewPorts.h"
#include "views/AdaptiveGrid.h"

namespace orlet::linux_qt {

class DisplayPreviewView;

// The displays as a vertically scrolling grid of live cards, in list order. A card lives as
// long as its display stays at its place in the list, so refreshes do not restart captures.
class DisplayGridView final : public QScrollArea {
 public:
  DisplayGridView(const MirrorViewPorts& ports, std::function<void(const Display&)> onSelect,
                  QWidget* parent = nullptr);

  void setDisplays(const std::vector<Display>& displays);
  std::vector<DisplayPreviewView*> cards() const;

 protected:
  bool viewportEvent(QEvent* event) override;

 private:
  struct Entry {
    Display display;
    DisplayPreviewView* card;
  };
  DisplayPreviewView* makeCard(const Display& display, int displayIndex);
  void layoutCards();

  const MirrorViewPorts& ports_;
  std::function<void(const Display&)> onSelect_;
  AdaptiveGrid grid_;
  QWidget* content_;
  std::vector<Entry> entries_;
};

}  // namespace orlet::linux_qt
