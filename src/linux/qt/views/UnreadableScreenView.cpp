#include "linux/qt/views/UnreadableScreenView.h"

#include <QLabel>
#include <QVBoxLayout>

#include "linux/qt/views/ViewStyle.h"

namespace orlet::linux_qt {
namespace {

constexpr int kSpacing = 12;
constexpr int kPadding = 28;

}  // namespace

UnreadableScreenView::UnreadableScreenView(QWidget* parent) : QWidget(parent) {
  auto* headline = new QLabel(QStringLiteral("Écrans illisibles"), this);
  headline->setFont(style::headlineFont());
  headline->setAlignment(Qt::AlignHCenter);
  caption_ = new QLabel(this);
  caption_->setFont(style::captionFont());
  caption_->setTextFormat(Qt::PlainText);
  caption_->setAlignment(Qt::AlignHCenter);
  caption_->setWordWrap(true);
  QPalette secondary = caption_->palette();
  secondary.setColor(QPalette::WindowText, style::secondaryColor(palette()));
  caption_->setPalette(secondary);

  auto* column = new QVBoxLayout(this);
  column->setSpacing(kSpacing);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->addStretch();
  column->addWidget(headline);
  column->addWidget(caption_);
  column->addStretch();
  setDepth(0);
}

void UnreadableScreenView::setDepth(int depth) {
  caption_->setText(
      QStringLiteral("L'affichage est en %1 bits par pixel, qu'ORLET ne sait pas lire : "
                     "passe-le en 24 bits (millions de couleurs), puis rouvre la session.")
          .arg(depth));
}

QString UnreadableScreenView::text() const {
  return caption_->text();
}

}  // namespace orlet::linux_qt
