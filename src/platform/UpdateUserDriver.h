#pragma once

#include <functional>
#include <string>

namespace orlet {

// One step of an update as the operator sees it. The texts are final (French); the driver lays
// them out.
struct UpdateScreen {
  enum class Step { checking, upToDate, available, downloading, verifying, ready, failed };
  Step step = Step::checking;
  std::string title;
  std::string message;
  std::string releaseNotes;      // HTML or text shown under the message (available)
  std::string releaseNotesLink;  // or a page the operator can open
  double progress = -1;          // 0...1 while downloading; < 0 when unknown or not shown
  std::string primaryButton;     // "Installer", "Relancer"...; empty for none
  std::string secondaryButton;   // "Annuler", "Plus tard", "OK"...; empty for none
};

// The update window: one window that shows the current step. The choices come back on the main
// thread; closing the window counts as the secondary button, and a screen without one cannot be
// closed.
class UpdateUserDriver {
 public:
  virtual ~UpdateUserDriver() = default;

  virtual void show(const UpdateScreen& screen, std::function<void()> onPrimary,
                    std::function<void()> onSecondary) = 0;
  virtual void dismiss() = 0;
};

}  // namespace orlet
