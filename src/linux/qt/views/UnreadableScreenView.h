#pragma once

#include <QWidget>

class QLabel;

namespace orlet::linux_qt {

// Shown instead of an empty grid when the screen's pixels cannot be read at all: what is wrong
// and what to do about it.
class UnreadableScreenView final : public QWidget {
 public:
  explicit UnreadableScreenView(QWidget* parent = nullptr);

  // The screen's depth in bits a pixel.
  void setDepth(int depth);
  QString text() const;

 private:
  QLabel* caption_;
};

}  // namespace orlet::linux_qt
