#pragma once

#include <QBasicTimer>
#include <QString>
#include <QWidget>

namespace orlet::linux_qt {

// An indeterminate progress indicator: a ring of spokes turning, with an optional label below,
// the whole drawn `scale` times its normal size. Animates only while shown.
class BusyIndicator final : public QWidget {
 public:
  explicit BusyIndicator(const QString& label, qreal scale = 1.0, QWidget* parent = nullptr);

  QString label() const { return label_; }
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  QString label_;
  qreal scale_;
  int step_ = 0;
  QBasicTimer timer_;
};

}  // namespace orlet::linux_qt
