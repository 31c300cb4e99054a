#include "linux/qt/views/DetailsPopover.h"

#include <QApplication>
#include <QBitmap>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QSocketNotifier>
#include <QVBoxLayout>
#include <QWindow>

#include "linux/qt/NativeCoordinates.h"
#include "linux/qt/views/ViewStyle.h"
#include "linux/x11/X11PressWatcher.h"

namespace orlet::linux_qt {
namespace {

constexpr int kPadding = 8;
constexpr int kArrowHeight = 8;
constexpr qreal kArrowHalfWidth = 9;
constexpr qreal kCornerRadius = 8;

}  // namespace

DetailsPopover::DetailsPopover(QWidget* owner)
    : QWidget(owner, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus),
      label_(new QLabel(this)) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setFocusPolicy(Qt::NoFocus);
  label_->setFont(style::captionFont());
  label_->setTextFormat(Qt::PlainText);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label_);
}

DetailsPopover::~DetailsPopover() {
  qApp->removeEventFilter(this);
}

void DetailsPopover::setText(const QString& text) {
  label_->setText(text);
}

QString DetailsPopover::text() const {
  return label_->text();
}

void DetailsPopover::showAt(QWidget* anchor) {
  anchor_ = anchor;
  place(anchor);
  show();
  raise();
  qApp->installEventFilter(this);
  watchPressesEverywhere();
}

// Presses in other applications never reach this program's windows: they are seen on the
// display as a whole. Without XInput 2 only this program's own presses close the bubble.
void DetailsPopover::watchPressesEverywhere() {
  if (presses_) return;
  presses_ = x11::X11PressWatcher::open();
  if (!presses_) return;
  pressNotifier_ = new QSocketNotifier(presses_->fileDescriptor(), QSocketNotifier::Read, this);
  connect(pressNotifier_, &QSocketNotifier::activated, this, [this] { pressedElsewhere(); });
}

void DetailsPopover::pressedElsewhere() {
  if (!presses_) return;
  if (const auto at = presses_->takePress()) dismissUnlessOn(toLogical(*at).toPoint());
}

void DetailsPopover::place(QWidget* anchor) {
  const QSize body = label_->sizeHint() + QSize(2 * kPadding, 2 * kPadding);
  const QSize total(body.width(), body.height() + kArrowHeight);
  const QRect anchorRect(anchor->mapToGlobal(QPoint(0, 0)), anchor->size());
  const QScreen* screen = anchor->screen();
  const QRect available = screen ? screen->availableGeometry() : QRect(anchorRect.topLeft(), total);

  arrowUp_ = anchorRect.bottom() + total.height() <= available.bottom();
  int x = anchorRect.center().x() - total.width() / 2;
  x = std::clamp(x, available.left(),
                 std::max(available.left(), available.right() - total.width()));
  const int y = arrowUp_ ? anchorRect.bottom() + 1 : anchorRect.top() - total.height();
  arrowX_ = std::clamp<qreal>(anchorRect.center().x() - x, kCornerRadius + kArrowHalfWidth,
                              total.width() - kCornerRadius - kArrowHalfWidth);
  const int top = arrowUp_ ? kArrowHeight : 0;
  layout()->setContentsMargins(kPadding, kPadding + top, kPadding, kPadding + kArrowHeight - top);
  setGeometry(QRect(QPoint(x, y), total));
}

QPainterPath DetailsPopover::outline() const {
  const QRectF body = arrowUp_ ? QRectF(0, kArrowHeight, width(), height() - kArrowHeight)
                               : QRectF(0, 0, width(), height() - kArrowHeight);
  QPainterPath path;
  path.addRoundedRect(body.adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
  QPolygonF arrow;
  const qreal base = arrowUp_ ? body.top() + 1 : body.bottom() - 1;
  const qreal tip = arrowUp_ ? 0.5 : height() - 0.5;
  arrow << QPointF(arrowX_ - kArrowHalfWidth, base) << QPointF(arrowX_, tip)
        << QPointF(arrowX_ + kArrowHalfWidth, base);
  QPainterPath arrowPath;
  arrowPath.addPolygon(arrow);
  arrowPath.closeSubpath();
  return path.united(arrowPath);
}

void DetailsPopover::resizeEvent(QResizeEvent*) {
  // Without a compositor, transparency shows as black: the window's shape is cut instead.
  QBitmap mask(size());
  mask.fill(Qt::color0);
  QPainter painter(&mask);
  painter.setPen(Qt::color1);
  painter.setBrush(Qt::color1);
  painter.drawPath(outline());
  painter.end();
  setMask(mask);
}

void DetailsPopover::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Mid), 1));
  painter.setBrush(palette().color(QPalette::Window));
  painter.drawPath(outline());
}

bool DetailsPopover::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonPress || !isVisible()) return false;
  if (!qobject_cast<QWindow*>(watched)) return false;  // each press reaches its window first
  dismissUnlessOn(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
  return false;
}

void DetailsPopover::dismissUnlessOn(QPoint global) {
  if (!isVisible()) return;
  const bool onSelf = geometry().contains(global);
  const bool onAnchor =
      anchor_ && QRect(anchor_->mapToGlobal(QPoint(0, 0)), anchor_->size()).contains(global);
  if (onSelf || onAnchor) return;
  hide();
  if (onDismiss_) onDismiss_();
}

void DetailsPopover::hideEvent(QHideEvent*) {
  qApp->removeEventFilter(this);
  // Hidden from within the notifier's own signal, perhaps: it goes once that has returned, and
  // stops watching the connection before the connection closes.
  if (pressNotifier_) {
    pressNotifier_->setEnabled(false);
    pressNotifier_->deleteLater();
    pressNotifier_ = nullptr;
  }
  presses_.reset();
}

}  // namespace orlet::linux_qt
