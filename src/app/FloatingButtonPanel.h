#pragma once

#include <string>
#include <vector>

#include "foundation/UserDefaults.h"
#include "platform/Drawing.h"
#include "platform/Panel.h"
#include "platform/WindowServer.h"

namespace orlet {

namespace button_defaults {
inline constexpr char x[] = "buttonWindowX";
inline constexpr char y[] = "buttonWindowY";
}  // namespace button_defaults

// The round button that floats over every desktop and toggles the mirror: its look and its
// remembered position.
class FloatingButtonPanel {
 public:
  FloatingButtonPanel() = delete;

  static constexpr Size size{40, 40};

  // Says what the button does: the panel never takes focus, so a hover is all it gets.
  static constexpr char toolTip[] = "Afficher ou masquer le miroir de l'écran (clic droit : menu)";

  static PanelConfig config();
  // A black disc carrying a white rounded square with a thin black cross.
  static Drawing face();

  // Restores the saved origin when both coordinates are stored as numbers and the button would
  // lie on a display; otherwise puts it at the main display's top-left corner.
  static void restorePosition(Panel& panel, const UserDefaults& defaults,
                              const std::vector<ScreenArea>& screens);
  static void savePosition(const Panel& panel, UserDefaults& defaults);
};

}  // namespace orlet
