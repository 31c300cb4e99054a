#include "linux/qt/views/BusyIndicator.h"

#include <QPainter>
#include <QTimerEvent>
#include <cmath>

#include "linux/qt/views/ViewStyle.h"

namespace orlet::linux_qt {
namespace {

constexpr int kSpokes = 8;
constexpr int kStepMilliseconds = 100;
constexpr qreal kSpinnerSide = 20;
constexpr qreal kLabelGap = 6;

}  // namespace

BusyIndicator::BusyIndicator(const QString& label, qreal scale, QWidget* parent)
    : QWidget(parent), label_(label), scale_(scale) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

QSize BusyIndicator::sizeHint() const {
  const QFontMetricsF metrics(font());
  const qreal width =
      std::max(kSpinnerSide, label_.isEmpty() ? 0 : metrics.horizontalAdvance(label_));
  const qreal height = kSpinnerSide + (label_.isEmpty() ? 0 : kLabelGap + metrics.height());
  return QSizeF(width * scale_ + 2, height * scale_ + 2).toSize();
}

void BusyIndicator::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QSizeF natural = QSizeF(sizeHint()) / scale_;
  painter.translate((width() - natural.width() * scale_) / 2,
                    (height() - natural.height() * scale_) / 2);
  painter.scale(scale_, scale_);

  const QPointF centre(natural.width() / 2, kSpinnerSide / 2);
  QColor color = palette().color(QPalette::WindowText);
  for (int i = 0; i < kSpokes; ++i) {
    // The spoke at the current step is darkest; the others fade behind it.
    const int age = (step_ - i + kSpokes) % kSpokes;
    color.setAlphaF(0.85 - 0.09 * age);
    painter.setPen(QPen(color, 2.0, Qt::SolidLine, Qt::RoundCap));
    const qreal angle = 2 * M_PI * i / kSpokes;
    const QPointF direction(std::sin(angle), -std::cos(angle));
    painter.drawLine(centre + direction * 4.5, centre + direction * 9);
  }
  if (label_.isEmpty()) return;
  painter.setPen(style::secondaryColor(palette()));
  painter.drawText(QRectF(0, kSpinnerSide + kLabelGap, natural.width(),
                          natural.height() - kSpinnerSide - kLabelGap),
                   Qt::AlignHCenter | Qt::AlignTop, label_);
}

void BusyIndicator::showEvent(QShowEvent*) {
  timer_.start(kStepMilliseconds, this);
}

void BusyIndicator::hideEvent(QHideEvent*) {
  timer_.stop();
}

void BusyIndicator::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_.timerId()) return QWidget::timerEvent(event);
  step_ = (step_ + 1) % kSpokes;
  update();
}

}  // namespace orlet::linux_qt
