#pragma once

#include <functional>
#include <memory>

#include "foundation/Subscription.h"

namespace orlet {

// The small titled panel "Paramètres": floating, on every desktop, out of the taskbar, centred,
// and never the active window. Its content is the shortcut recorder and "Valider".
class SettingsPanel {
 public:
  virtual ~SettingsPanel() = default;

  virtual void orderFrontRegardless() = 0;  // show and raise, without activating
  virtual bool isVisible() const = 0;
  virtual void close() = 0;  // hides it; the will-close observers run first

  // The panel is about to close, by its close button or by close().
  [[nodiscard]] virtual Subscription observeWillClose(std::function<void()> handler) = 0;
  // A left button was released over the panel, after the panel handled it.
  [[nodiscard]] virtual Subscription observeLeftMouseUp(std::function<void()> handler) = 0;
};

class SettingsPanelFactory {
 public:
  virtual ~SettingsPanelFactory() = default;
  // A hidden panel whose content calls `onClose` once "Valider" has saved; nullptr when it
  // cannot be created.
  virtual std::unique_ptr<SettingsPanel> createSettingsPanel(std::function<void()> onClose) = 0;
};

}  // namespace orlet
