#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace orlet::linux_qt {

// Shown while screen recording is not allowed: what is missing, its status, where to allow it,
// and a button that opens those settings.
class PermissionCardView final : public QWidget {
 public:
  explicit PermissionCardView(std::function<void()> openSettings, QWidget* parent = nullptr);

  void setStatus(const QString& text, bool granted);
  QString statusText() const;
  QPushButton* settingsButton() const { return button_; }

 private:
  QLabel* status_;
  QPushButton* button_;
};

}  // namespace orlet::linux_qt
