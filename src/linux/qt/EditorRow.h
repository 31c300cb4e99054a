#pragma once

#include <QComboBox>
#include <QWidget>
#include <functional>

#include "foundation/Subscription.h"
#include "settings/EditorChoice.h"
#include "window/CaptureOneFocus.h"

class QLabel;

namespace orlet::linux_qt {

// "Éditeur" in the settings panel: "Automatique" or one application, offered from the photo
// applications installed and those running, read again each time the list opens. The choice is
// made the moment an entry is picked. Below it, while no editor is known, one line says why
// choosing one matters.
class EditorRow final : public QWidget {
 public:
  EditorRow(const CaptureOneFocus& editor, EditorChoice& choice, QWidget* parent);

  // Its height now: one line more while the hint shows.
  int rowHeight() const;
  // Called when the hint appears or goes, so that the panel can grow or shrink.
  void onHeightChange(std::function<void()> handler) { heightChanged_ = std::move(handler); }

  QComboBox* comboBox() const { return combo_; }

 private:
  void fill();
  void picked(int index);
  void updateHint();

  const CaptureOneFocus& editor_;
  EditorChoice& choice_;
  QComboBox* combo_ = nullptr;
  QLabel* hint_ = nullptr;
  std::function<void()> heightChanged_;
  Subscription choiceSubscription_;
};

}  // namespace orlet::linux_qt
