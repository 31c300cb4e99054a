#include "linux/update/QtAlertPresenter.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>

#include "linux/qt/HomeScreen.h"
#include "linux/qt/SymbolIcons.h"

namespace orlet::linux_update {

namespace {

constexpr int iconSize = 64;

QMessageBox::Icon iconOf(AlertStyle style) {
  switch (style) {
    case AlertStyle::warning:
      return QMessageBox::Warning;
    case AlertStyle::critical:
      return QMessageBox::Critical;
    case AlertStyle::informational:
      break;
  }
  return QMessageBox::Information;
}

}  // namespace

int QtAlertPresenter::runModal(const Alert& alert) {
  QMessageBox box;
  box.setWindowTitle(QStringLiteral("ORLET"));
  box.setText(QString::fromStdString(alert.messageText));
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  box.setIcon(iconOf(alert.style));
  if (!alert.symbolName.empty()) {
    const QPixmap symbol =
        linux_qt::symbolPixmap(alert.symbolName, box.palette().color(QPalette::WindowText),
                               iconSize, box.devicePixelRatioF());
    if (!symbol.isNull()) box.setIconPixmap(symbol);
  }
  std::vector<QAbstractButton*> buttons;
  for (const auto& title : alert.buttons)
    buttons.push_back(box.addButton(QString::fromStdString(title), QMessageBox::AcceptRole));
  if (!buttons.empty()) box.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
  box.adjustSize();
  linux_qt::centreOnHomeScreen(box);
  box.exec();
  for (std::size_t i = 0; i < buttons.size(); ++i)
    if (box.clickedButton() == buttons[i]) return static_cast<int>(i);
  return 0;
}

}  // namespace orlet::linux_update
