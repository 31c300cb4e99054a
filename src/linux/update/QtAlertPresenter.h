#pragma once

#include "platform/Alert.h"

namespace orlet::linux_update {

// Alerts as Qt message boxes: the style's icon unless a symbol is named (themed, with the
// bundled picture as fallback), the buttons in the order given, run modally.
class QtAlertPresenter final : public AlertPresenter {
 public:
  int runModal(const Alert& alert) override;
};

}  // namespace orlet::linux_update
