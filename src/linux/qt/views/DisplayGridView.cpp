#include "linux/qt/views/DisplayGridView.h"

#include <QEvent>

#include "linux/qt/views/DisplayPreviewView.h"

namespace orlet::linux_qt {

DisplayGridView::DisplayGridView(const MirrorViewPorts& ports,
                                 std::function<void(const Display&)> onSelect, QWidget* parent)
    : QScrollArea(parent), ports_(ports), onSelect_(std::move(onSelect)), content_(new QWidget) {
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);  // the panel never takes the keyboard
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setWidgetResizable(false);
  setWidget(content_);
  // The panel's gradient shows through (setWidget turns the content's own fill on).
  viewport()->setAutoFillBackground(false);
  content_->setAutoFillBackground(false);
}

DisplayPreviewView* DisplayGridView::makeCard(const Display& display, int displayIndex) {
  auto* card = new DisplayPreviewView(ports_, display, false, nullptr, displayIndex, content_);
  card->setOnTap([this, display] { onSelect_(display); });
  return card;
}

void DisplayGridView::setDisplays(const std::vector<Display>& displays) {
  std::vector<Entry> next;
  next.reserve(displays.size());
  for (std::size_t i = 0; i < displays.size(); ++i) {
    const bool kept = i < entries_.size() && entries_[i].display == displays[i];
    if (kept) {
      next.push_back(entries_[i]);
      entries_[i].card = nullptr;
    } else {
      next.push_back({displays[i], makeCard(displays[i], static_cast<int>(i) + 1)});
    }
  }
  for (const auto& old : entries_) {
    if (!old.card) continue;
    old.card->hide();  // stops its capture now
    old.card->deleteLater();
  }
  entries_ = std::move(next);
  layoutCards();
  for (const auto& entry : entries_) entry.card->show();
}

std::vector<DisplayPreviewView*> DisplayGridView::cards() const {
  std::vector<DisplayPreviewView*> result;
  for (const auto& entry : entries_) result.push_back(entry.card);
  return result;
}

bool DisplayGridView::viewportEvent(QEvent* event) {
  // The viewport narrows when the scroll bar appears: the columns follow its width.
  if (event->type() == QEvent::Resize) layoutCards();
  return QScrollArea::viewportEvent(event);
}

void DisplayGridView::layoutCards() {
  const double width = viewport()->width();
  const double rowHeight = entries_.empty() ? 0 : entries_.front().card->sizeHint().height();
  const auto cells = grid_.cells(width, entries_.size(), rowHeight);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Rect& cell = cells[i];
    entries_[i].card->setGeometry(QRectF(cell.x, cell.y, cell.width, cell.height).toRect());
  }
  content_->resize(viewport()->width(),
                   static_cast<int>(grid_.height(entries_.size(), width, rowHeight)));
}

}  // namespace orlet::linux_qt
