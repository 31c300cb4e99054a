#include "linux/qt/HomeScreen.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

namespace orlet::linux_qt {

QScreen* homeScreen() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() != QLatin1String(floatingButtonName) || !window->isVisible()) continue;
    if (auto* screen = QGuiApplication::screenAt(window->geometry().center())) return screen;
  }
  return QGuiApplication::primaryScreen();
}

void centreOnHomeScreen(QWidget& window) {
  const auto* screen = homeScreen();
  if (!screen) return;
  QRect frame = window.frameGeometry();
  frame.moveCenter(screen->availableGeometry().center());
  window.move(frame.topLeft());
}

}  // namespace orlet::linux_qt
