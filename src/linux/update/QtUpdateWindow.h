#pragma once

#include <QWidget>
#include <functional>

#include "platform/UpdateUserDriver.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace orlet::linux_update {

class ReleaseNotesView;

// The update window: one titled window whose content follows the update's current step.
class QtUpdateWindow final : public QWidget, public UpdateUserDriver {
 public:
  QtUpdateWindow();

  void show(const UpdateScreen& screen, std::function<void()> onPrimary,
            std::function<void()> onSecondary) override;
  void dismiss() override { hide(); }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void build();

  QLabel* title_ = nullptr;
  QLabel* message_ = nullptr;
  ReleaseNotesView* notes_ = nullptr;
  QLabel* link_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QPushButton* primary_ = nullptr;
  QPushButton* secondary_ = nullptr;
  std::function<void()> onPrimary_, onSecondary_;
};

}  // namespace orlet::linux_update
