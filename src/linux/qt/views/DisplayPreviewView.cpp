#include "linux/qt/views/DisplayPreviewView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include "linux/qt/views/DetailsPopover.h"
#include "linux/qt/views/FrameView.h"
#include "linux/qt/views/ViewStyle.h"

namespace orlet::linux_qt {
namespace {

constexpr int kThumbnailHeight = 120;
constexpr int kCornerRadius = 8;
constexpr int kShadowRadius = 6;
constexpr int kCardSpacing = 8;
constexpr int kCaptionSpacing = 4;

Size sizeOf(const Display& display) {
  return {double(display.width), double(display.height)};
}

}  // namespace

DisplayPreviewView::DisplayPreviewView(const MirrorViewPorts& ports, Display display,
                                       bool isExpanded, std::function<void()> onBack,
                                       int displayIndex, QWidget* parent)
    : QWidget(parent),
      model_(ports.scheduler, ports.capture, ports.displayInfo, std::move(display), isExpanded,
             std::move(onBack), displayIndex) {
  if (isExpanded) {
    buildMirror();
  } else {
    buildCard();
  }
  frameView_->setPictureSizeHandler(
      [this](QSize size) { model_.cm().setPictureSize(size.width(), size.height()); });
  subscriptions_.push_back(model_.cm().currentFrame.observe(
      [this](const FrameRef& frame) { frameView_->setFrame(frame); }));
  subscriptions_.push_back(model_.cm().streamLost.observe([this](bool lost) {
    frameView_->setNotice(lost ? QStringLiteral("Écran déconnecté") : QString());
  }));
}

DisplayPreviewView::~DisplayPreviewView() {
  subscriptions_.clear();
  if (appeared_) model_.disappear();
}

void DisplayPreviewView::buildCard() {
  frameView_ = new FrameView(sizeOf(model_.display()),
                             {kCornerRadius, kShadowRadius, QStringLiteral("Chargement...")}, this);
  // The shadow's margins are part of the thumbnail's widget but not of its 120-high picture.
  frameView_->setFixedHeight(kThumbnailHeight + 2 * kShadowRadius);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kCardSpacing - kShadowRadius);
  column->addWidget(frameView_);
  column->addLayout(buildCaptionRow());

  subscriptions_.push_back(model_.showingInfo.observe([this](bool show) { showInfo(show); }));
}

QLayout* DisplayPreviewView::buildCaptionRow() {
  caption_ = new QLabel(QString::fromStdString(model_.displayName()), this);
  caption_->setFont(style::captionFont());
  caption_->setTextFormat(Qt::PlainText);
  infoButton_ = new QToolButton(this);
  infoButton_->setText(QStringLiteral("•••"));
  infoButton_->setFont(style::smallerCaptionFont());
  infoButton_->setAutoRaise(true);
  infoButton_->setFocusPolicy(Qt::NoFocus);
  QPalette secondary = infoButton_->palette();
  secondary.setColor(QPalette::ButtonText, style::secondaryColor(palette()));
  infoButton_->setPalette(secondary);
  connect(infoButton_, &QToolButton::clicked, this, [this] { model_.toggleInfo(); });

  auto* row = new QHBoxLayout;
  row->setSpacing(kCaptionSpacing);
  row->addStretch();
  row->addWidget(caption_);
  row->addWidget(infoButton_);
  row->addStretch();
  return row;
}

void DisplayPreviewView::buildMirror() {
  frameView_ = new FrameView(sizeOf(model_.display()),
                             {0, 0, QStringLiteral("Chargement du flux vidéo...")}, this);
}

void DisplayPreviewView::showInfo(bool show) {
  if (!show) {
    if (popover_) popover_->hide();
    return;
  }
  if (!popover_) {
    popover_ = new DetailsPopover(this);
    popover_->setOnDismiss([this] { model_.showingInfo.set(false); });
  }
  popover_->setText(QString::fromStdString(model_.displayDetailedInfo()));
  popover_->showAt(infoButton_);
}

void DisplayPreviewView::addOverlay(QWidget* overlay) {
  overlay->setParent(this);
  overlay->setGeometry(rect());
  overlays_.push_back(overlay);
  overlay->show();
  overlay->raise();
}

QRectF DisplayPreviewView::pictureRect() const {
  if (!model_.isExpanded()) return frameView_->pictureRect().translated(frameView_->pos());
  const Rect fit = model_.pictureRect({double(width()), double(height())});
  return QRectF(fit.x, fit.y, fit.width, fit.height);
}

QSize DisplayPreviewView::sizeHint() const {
  if (model_.isExpanded()) return QWidget::sizeHint();
  return layout()->sizeHint();
}

void DisplayPreviewView::resizeEvent(QResizeEvent*) {
  if (!model_.isExpanded()) return;
  frameView_->setGeometry(rect());
  for (QWidget* overlay : overlays_) overlay->setGeometry(rect());
}

void DisplayPreviewView::showEvent(QShowEvent*) {
  if (appeared_) return;
  appeared_ = true;
  model_.appear();
}

void DisplayPreviewView::hideEvent(QHideEvent*) {
  if (!appeared_) return;
  appeared_ = false;
  model_.showingInfo.set(false);
  model_.disappear();
}

void DisplayPreviewView::mousePressEvent(QMouseEvent* event) {
  // A card takes its clicks; the mirror's background lets them through to move the panel.
  if (model_.isExpanded()) return QWidget::mousePressEvent(event);
  event->accept();
}

void DisplayPreviewView::mouseReleaseEvent(QMouseEvent* event) {
  if (model_.isExpanded()) return QWidget::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) && onTap_) {
    onTap_();
  }
}

}  // namespace orlet::linux_qt
