#pragma once

#include <memory>

#include "app/AppMenuActions.h"
#include "platform/Drawing.h"
#include "platform/Menu.h"
#include "platform/StatusBar.h"

namespace orlet {

// The status item's menu: "Paramètres…", "Mise à jour…" and "Quitter", deliberately without
// keyboard shortcuts.
std::shared_ptr<const Menu> makeStatusMenu(const AppMenuActions& actions, Application& application);

// The 18 x 18 status icon: the floating button's motif at menu-bar size.
Drawing statusItemIcon();

}  // namespace orlet
