#pragma once

#include <QMenu>
#include <QSystemTrayIcon>
#include <map>
#include <memory>

#include "platform/StatusBar.h"

namespace orlet::linux_qt {

// The notification area through QSystemTrayIcon (StatusNotifierItem over D-Bus, or an XEmbed
// tray such as trayer), and the menus as QMenu.
class QtStatusBar final : public StatusBar {
 public:
  QtStatusBar();
  ~QtStatusBar() override;

  bool createStatusItem(const Drawing& icon, std::shared_ptr<const Menu> menu) override;
  void popUpMenu(std::shared_ptr<const Menu> menu, Point screenLocation) override;

  QSystemTrayIcon* trayIcon() const { return tray_.get(); }

 private:
  QMenu& menuFor(const std::shared_ptr<const Menu>& menu);

  struct BuiltMenu {
    std::shared_ptr<const Menu> source;  // kept alive: its actions are called from the QMenu
    std::unique_ptr<QMenu> menu;
  };
  std::map<const Menu*, BuiltMenu> menus_;
  std::unique_ptr<QSystemTrayIcon> tray_;
};

}  // namespace orlet::linux_qt
