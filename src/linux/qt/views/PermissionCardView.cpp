#include "linux/qt/views/PermissionCardView.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

#include "linux/qt/views/ViewStyle.h"

namespace orlet::linux_qt {
namespace {

constexpr int kSpacing = 12;
constexpr int kPadding = 16;
constexpr int kSymbolSize = 32;
constexpr int kCaptionPadding = 12;

// Two overlapping screens crossed out: screen recording is off.
class ScreenRecordingSymbol final : public QWidget {
 public:
  explicit ScreenRecordingSymbol(QWidget* parent) : QWidget(parent) {
    setFixedSize(kSymbolSize + 8, kSymbolSize);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = style::secondaryColor(palette());
    const qreal s = kSymbolSize / 32.0;
    const QPointF origin((width() - 38 * s) / 2, 0);
    painter.translate(origin);
    painter.scale(s, s);
    painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    // The back screen shows only where the front one does not cover it.
    QPainterPath back;
    back.addRoundedRect(QRectF(10, 4, 26, 18), 3, 3);
    QPainterPath front;
    front.addRoundedRect(QRectF(2, 10, 26, 18), 3, 3);
    QPainterPath frontArea;
    frontArea.addRect(QRectF(0, 8, 30, 22));
    painter.drawPath(back.subtracted(frontArea));
    painter.drawPath(front);
    painter.drawLine(QPointF(4, 2), QPointF(34, 30));
  }
};

QLabel* label(const QString& text, const QFont& font, QWidget* parent) {
  auto* result = new QLabel(text, parent);
  result->setFont(font);
  result->setTextFormat(Qt::PlainText);
  result->setAlignment(Qt::AlignHCenter);
  return result;
}

}  // namespace

PermissionCardView::PermissionCardView(std::function<void()> openSettings, QWidget* parent)
    : QWidget(parent) {
  auto* symbol = new ScreenRecordingSymbol(this);
  auto* headline =
      label(QStringLiteral("Autorisation d'enregistrement d'écran"), style::headlineFont(), this);
  status_ = label({}, style::subheadlineFont(), this);
  // The card shows where X11 cannot capture the screen, a Wayland session: the way out is an X11
  // session, named as the usual login screens name it.
  auto* caption =
      label(QStringLiteral("Pour continuer, ouvre une session X11 : sur l'écran de connexion, "
                           "choisis « Ubuntu sur Xorg » ou « GNOME sur Xorg »."),
            style::captionFont(), this);
  caption->setWordWrap(true);
  caption->setContentsMargins(kCaptionPadding, 0, kCaptionPadding, 0);
  QPalette secondary = caption->palette();
  secondary.setColor(QPalette::WindowText, style::secondaryColor(palette()));
  caption->setPalette(secondary);
  button_ = new QPushButton(QStringLiteral("Ouvrir Réglages"), this);
  button_->setFocusPolicy(Qt::NoFocus);
  connect(button_, &QPushButton::clicked, this, [openSettings = std::move(openSettings)] {
    if (openSettings) openSettings();
  });

  auto* column = new QVBoxLayout(this);
  column->setSpacing(kSpacing);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->addStretch();
  column->addWidget(symbol, 0, Qt::AlignHCenter);
  column->addWidget(headline);
  column->addWidget(status_);
  column->addWidget(caption);
  column->addWidget(button_, 0, Qt::AlignHCenter);
  column->addStretch();
}

void PermissionCardView::setStatus(const QString& text, bool granted) {
  status_->setText(QStringLiteral("Statut : ") + text);
  QPalette colored = status_->palette();
  colored.setColor(QPalette::WindowText, granted ? style::systemGreen() : style::systemRed());
  status_->setPalette(colored);
}

QString PermissionCardView::statusText() const {
  return status_->text();
}

}  // namespace orlet::linux_qt
