#include "linux/qt/QtStatusBar.h"

#include <QCursor>
#include <QIcon>

#include "linux/qt/DrawingPainter.h"
#include "linux/qt/NativeCoordinates.h"

namespace orlet::linux_qt {
namespace {

// The icon at its own size and at twice it, for trays on high-density screens.
QIcon iconFrom(const Drawing& drawing) {
  const QSize size(static_cast<int>(drawing.size.width), static_cast<int>(drawing.size.height));
  QIcon icon;
  for (qreal ratio : {1.0, 2.0}) icon.addPixmap(renderDrawing(drawing, size, ratio));
  return icon;
}

}  // namespace

QtStatusBar::QtStatusBar() = default;
QtStatusBar::~QtStatusBar() = default;

// Made and shown even without a notification area: one started later (a panel that comes up
// after this program, or comes back) docks the icon as soon as it claims the tray selection.
bool QtStatusBar::createStatusItem(const Drawing& icon, std::shared_ptr<const Menu> menu) {
  tray_ = std::make_unique<QSystemTrayIcon>(iconFrom(icon));
  QMenu& built = menuFor(menu);
  tray_->setContextMenu(&built);
  // A left click opens the same menu, as a status item does.
  QObject::connect(tray_.get(), &QSystemTrayIcon::activated, tray_.get(),
                   [&built](QSystemTrayIcon::ActivationReason reason) {
                     if (reason == QSystemTrayIcon::Trigger) built.popup(QCursor::pos());
                   });
  tray_->show();
  return QSystemTrayIcon::isSystemTrayAvailable();
}

void QtStatusBar::popUpMenu(std::shared_ptr<const Menu> menu, Point screenLocation) {
  if (!menu) return;
  menuFor(menu).popup(toLogical(screenLocation).toPoint());
}

QMenu& QtStatusBar::menuFor(const std::shared_ptr<const Menu>& menu) {
  auto& entry = menus_[menu.get()];
  if (entry.menu) return *entry.menu;
  entry.source = menu;
  entry.menu = std::make_unique<QMenu>();
  for (const auto& item : menu->items) {
    if (item.isSeparator) {
      entry.menu->addSeparator();
      continue;
    }
    auto* action = entry.menu->addAction(QString::fromStdString(item.title));
    if (!item.keyEquivalent.empty()) {
      action->setShortcut(QKeySequence(QString::fromStdString(item.keyEquivalent)));
    }
    QObject::connect(action, &QAction::triggered, action, [action = item.action] {
      if (action) action();
    });
  }
  return *entry.menu;
}

}  // namespace orlet::linux_qt
