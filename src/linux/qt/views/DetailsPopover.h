#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

class QLabel;
class QSocketNotifier;

namespace orlet::x11 {
class X11PressWatcher;
}

namespace orlet::linux_qt {

// A small bubble of text pointing at the control that opened it. It is an unmanaged popup that
// never takes the keyboard or the focus, so the editor stays the active application while it
// is open; a press anywhere else, in this program or any other, closes it.
class DetailsPopover final : public QWidget {
 public:
  explicit DetailsPopover(QWidget* owner);
  ~DetailsPopover() override;

  void setText(const QString& text);
  QString text() const;

  // Shows the bubble below `anchor` (above it when the screen has no room below), its arrow on
  // the anchor's centre. Presses on `anchor` itself are left to the anchor.
  void showAt(QWidget* anchor);
  // Called when the bubble closes by itself (a press elsewhere).
  void setOnDismiss(std::function<void()> onDismiss) { onDismiss_ = std::move(onDismiss); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPainterPath outline() const;
  void place(QWidget* anchor);
  void watchPressesEverywhere();
  void pressedElsewhere();
  // Closes the bubble unless `global` (logical coordinates) is on it or on its anchor.
  void dismissUnlessOn(QPoint global);

  QLabel* label_;
  QPointer<QWidget> anchor_;
  bool arrowUp_ = true;
  qreal arrowX_ = 0;
  std::function<void()> onDismiss_;
  std::unique_ptr<x11::X11PressWatcher> presses_;
  QSocketNotifier* pressNotifier_ = nullptr;
};

}  // namespace orlet::linux_qt
