#include "linux/qt/QtPanelButton.h"

#include <QEvent>
#include <QIcon>
#include <QToolButton>
#include <cmath>

#include "linux/qt/SymbolIcons.h"

namespace orlet::linux_qt {
namespace {

// The symbols are drawn at 14 points, as the platform's symbol configuration asks.
constexpr int symbolSize = 14;

// The secondary label colour is the text colour at half strength; the accent is the
// palette's highlight.
QColor tintColor(const QWidget& widget, ButtonTint tint) {
  if (tint == ButtonTint::controlAccent) return widget.palette().color(QPalette::Highlight);
  QColor color = widget.palette().color(QPalette::WindowText);
  color.setAlphaF(0.55f);
  return color;
}

}  // namespace

QtPanelButton::QtPanelButton(QWidget& panel, const PanelButtonConfig& config)
    : panel_(&panel), config_(config), button_(new QToolButton(&panel)) {
  const int side = static_cast<int>(std::lround(config.size));
  button_->setAutoRaise(true);
  button_->setFocusPolicy(Qt::NoFocus);
  button_->setFixedSize(side, side);
  button_->setIconSize(QSize(symbolSize, symbolSize));
  button_->setToolTip(QString::fromStdString(config.toolTip));
  button_->setAccessibleName(QString::fromStdString(config.accessibilityDescription));
  QObject::connect(button_, &QToolButton::clicked, this, [this] { clickHandlers_.call(); });
  setSymbol(config.symbol, config.tint);
  panel.installEventFilter(this);
  place();
  button_->setVisible(!config.hidden);
  button_->raise();
}

QtPanelButton::~QtPanelButton() {
  if (panel_) panel_->removeEventFilter(this);
  delete button_.data();
}

void QtPanelButton::setHidden(bool hidden) {
  if (button_) button_->setVisible(!hidden);
}

bool QtPanelButton::isHidden() const {
  return !button_ || button_->isHidden();
}

void QtPanelButton::setSymbol(const std::string& symbol, ButtonTint tint) {
  if (!button_) return;
  config_.symbol = symbol;
  config_.tint = tint;
  const QPixmap pixmap =
      symbolPixmap(symbol, tintColor(*button_, tint), symbolSize, button_->devicePixelRatioF());
  button_->setIcon(QIcon(pixmap));
}

Subscription QtPanelButton::onClick(std::function<void()> handler) {
  return clickHandlers_.add(std::move(handler));
}

bool QtPanelButton::eventFilter(QObject* watched, QEvent* event) {
  if (watched == panel_ && event->type() == QEvent::Resize) place();
  return false;
}

void QtPanelButton::place() {
  if (!button_ || !panel_) return;
  const int margin = static_cast<int>(std::lround(config_.margin));
  const int x = config_.corner == PanelCorner::topLeading
                    ? margin
                    : panel_->width() - margin - button_->width();
  button_->move(x, margin);
}

void QtPanelButton::setToolTip(const std::string& toolTip) {
  config_.toolTip = toolTip;
  if (button_) button_->setToolTip(QString::fromStdString(toolTip));
}

}  // namespace orlet::linux_qt
