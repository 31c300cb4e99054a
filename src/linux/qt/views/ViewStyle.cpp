#include "linux/qt/views/ViewStyle.h"

#include <QApplication>
#include <algorithm>

namespace orlet::linux_qt::style {
namespace {

// Sizes relative to the body text, as the platform's text styles are (caption 10 pt and
// headline 13 pt bold next to a 13 pt body).
QFont scaled(double factor, bool bold = false) {
  QFont font = QApplication::font();
  const double base = font.pointSizeF() > 0 ? font.pointSizeF() : 10.0;
  font.setPointSizeF(std::max(7.0, base * factor));
  font.setBold(bold);
  return font;
}

}  // namespace

QFont captionFont() {
  return scaled(0.85);
}
QFont smallerCaptionFont() {
  return scaled(0.78);
}
QFont headlineFont() {
  return scaled(1.0, true);
}
QFont subheadlineFont() {
  return scaled(0.92);
}

QColor secondaryColor(const QPalette& palette) {
  QColor color = palette.color(QPalette::WindowText);
  color.setAlphaF(0.5);
  return color;
}

QColor systemGreen() {
  return QColor(52, 199, 89);
}
QColor systemRed() {
  return QColor(255, 59, 48);
}

}  // namespace orlet::linux_qt::style
