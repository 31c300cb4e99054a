#pragma once

#include <memory>

#include "foundation/Geometry.h"
#include "platform/Drawing.h"
#include "platform/Menu.h"

namespace orlet {

// The desktop's notification area (system tray) and context menus.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  // Shows a status icon drawn from `icon` whose click opens `menu`. Returns false when the
  // desktop has no notification area yet; the icon then appears once one does.
  virtual bool createStatusItem(const Drawing& icon, std::shared_ptr<const Menu> menu) = 0;

  // Pops `menu` up with its top-left corner at `screenLocation` (global coordinates).
  virtual void popUpMenu(std::shared_ptr<const Menu> menu, Point screenLocation) = 0;
};

// The running program itself.
class Application {
 public:
  virtual ~Application() = default;
  // Leaves the event loop; the process then ends. Saves nothing: settings are written as they
  // change.
  virtual void terminate() = 0;
};

}  // namespace orlet
