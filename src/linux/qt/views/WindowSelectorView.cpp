#include "linux/qt/views/WindowSelectorView.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>

#include "linux/qt/views/BusyIndicator.h"
#include "linux/qt/views/DisplayGridView.h"
#include "linux/qt/views/DisplayPreviewView.h"
#include "linux/qt/views/PermissionCardView.h"
#include "linux/qt/views/UnreadableScreenView.h"

namespace orlet::linux_qt {
namespace {

constexpr int kMinimumSide = 300;
constexpr qreal kLoadingScale = 1.5;

}  // namespace

WindowSelectorView::WindowSelectorView(const MirrorViewPorts& ports, QWidget* parent)
    : QWidget(parent),
      ports_(ports),
      model_({ports.scheduler, ports.notifications, ports.capture, ports.permission,
              ports.isWindowVisible, ports.clicks}),
      card_(new PermissionCardView([this] { model_.openScreenRecordingSettings(); }, this)),
      loading_(new BusyIndicator(QStringLiteral("Chargement des écrans..."), kLoadingScale, this)),
      grid_(new DisplayGridView(
          ports_, [this](const Display& d) { model_.select(d); }, this)),
      unreadable_(new UnreadableScreenView(this)) {
  setMinimumSize(kMinimumSide, kMinimumSide);
  changes_ = model_.observeChanges([this] { render(); });
  // The program becomes active when one of its windows is given the focus (its settings, say):
  // the operator may have changed the permission meanwhile.
  connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState s) {
    if (s == Qt::ApplicationActive) model_.applicationDidBecomeActive();
  });
  render();
}

WindowSelectorView::~WindowSelectorView() {
  changes_.cancel();
  enlarged_.reset();
  if (appeared_) model_.disappear();
}

void WindowSelectorView::render() {
  const SelectorForeground foreground = model_.foreground();
  const bool granted = model_.dm().hasPermission.get();
  card_->setStatus(QString::fromStdString(model_.permissionStatusText()), granted);
  if (foreground == SelectorForeground::grid) grid_->setDisplays(model_.dm().displays.get());
  renderEnlarged();
  card_->setVisible(foreground == SelectorForeground::permissionCard);
  loading_->setVisible(foreground == SelectorForeground::loading);
  grid_->setVisible(foreground == SelectorForeground::grid);
  unreadable_->setDepth(model_.dm().unreadableDepth.get());
  unreadable_->setVisible(foreground == SelectorForeground::unreadableScreen);
  layoutParts();
}

void WindowSelectorView::renderEnlarged() {
  const auto& selected = model_.selected.get();
  if (!selected) {
    enlarged_.reset();
    return;
  }
  if (enlarged_ && enlarged_->model().display() == *selected) return;
  enlarged_.reset();
  auto back = [this] { model_.back(); };
  enlarged_ = std::make_unique<DisplayPreviewView>(ports_, *selected, true, back,
                                                   model_.enlargedDisplayIndex(), this);
  if (ports_.decorateMirror) ports_.decorateMirror(*enlarged_, model_.dm());
  enlarged_->setGeometry(rect());
  enlarged_->show();
}

void WindowSelectorView::layoutParts() {
  card_->setGeometry(rect());
  grid_->setGeometry(rect());
  unreadable_->setGeometry(rect());
  const QSize hint = loading_->sizeHint();
  loading_->setGeometry(
      QRect(QPoint((width() - hint.width()) / 2, (height() - hint.height()) / 2), hint));
  if (enlarged_) enlarged_->setGeometry(rect());
}

void WindowSelectorView::resizeEvent(QResizeEvent*) {
  layoutParts();
}

void WindowSelectorView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QLinearGradient gradient(rect().topLeft(), rect().bottomRight());
  gradient.setColorAt(0, palette().color(QPalette::Window));
  gradient.setColorAt(1, palette().color(QPalette::Base));
  painter.fillRect(rect(), gradient);
}

void WindowSelectorView::showEvent(QShowEvent*) {
  if (appeared_) return;
  appeared_ = true;
  model_.appear();
}

void WindowSelectorView::hideEvent(QHideEvent*) {
  if (!appeared_) return;
  appeared_ = false;
  model_.disappear();
}

}  // namespace orlet::linux_qt
