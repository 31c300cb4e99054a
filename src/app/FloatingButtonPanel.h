#pragma once

#include "foundation/UserDefaults.h"
#include "platform/Drawing.h"
#include "platform/Panel.h"

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

  static PanelConfig config();
  // A black disc carrying a white rounded square with a thin black cross.
  static Drawing face();

  // Restores the origin only when both coordinates are stored as numbers; otherwise the panel
  // keeps its origin.
  static void restorePosition(Panel& panel, const UserDefaults& defaults);
  static void savePosition(const Panel& panel, UserDefaults& defaults);
};

}  // namespace orlet
