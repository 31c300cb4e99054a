#include "linux/qt/PanelWidget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWindow>
#include <cmath>
#include <utility>

#include "linux/qt/DrawingPainter.h"
#include "linux/qt/NativeCoordinates.h"
#include "linux/qt/ResizeGrip.h"

namespace orlet::linux_qt {
namespace {

constexpr int gripThickness = 5;
constexpr int cornerGrip = 12;

QSize toQSize(Size size) {
  return {static_cast<int>(std::lround(size.width)), static_cast<int>(std::lround(size.height))};
}

bool isRound(const PanelConfig& config) {
  return config.content == PanelContent::floatingButton;
}

}  // namespace

PanelWidget::PanelWidget(const PanelConfig& config, Callbacks callbacks)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus),
      config_(config),
      callbacks_(std::move(callbacks)),
      background_(palette().color(QPalette::Window)) {
  configureWindow();
  if (config_.resizable) addGrips();
  if (config_.content == PanelContent::mirror) setContent(new QWidget(this));
}

void PanelWidget::configureWindow() {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_X11DoNotAcceptFocus);
  setAttribute(Qt::WA_AlwaysShowToolTips);  // the panel is never the active window
  if (!config_.toolTip.empty()) setToolTip(QString::fromStdString(config_.toolTip));
  setFocusPolicy(Qt::NoFocus);
  const QSize size = toQSize(config_.contentSize);
  if (config_.resizable) {
    if (config_.minimumSize) setMinimumSize(toQSize(*config_.minimumSize));
  } else {
    setFixedSize(size);
  }
  // An explicit position: the window manager then keeps it (ICCCM USPosition) instead of
  // placing the panel by its own policy.
  setGeometry(QRect(QPoint(0, 0), size));
  // Round without a compositor: the X SHAPE extension clips the window to the disc.
  if (isRound(config_)) setMask(QRegion(rect(), QRegion::Ellipse));
}

void PanelWidget::addGrips() {
  for (Qt::Edges edges :
       {Qt::Edges(Qt::LeftEdge), Qt::Edges(Qt::RightEdge), Qt::Edges(Qt::TopEdge),
        Qt::Edges(Qt::BottomEdge), Qt::TopEdge | Qt::LeftEdge, Qt::TopEdge | Qt::RightEdge,
        Qt::BottomEdge | Qt::LeftEdge, Qt::BottomEdge | Qt::RightEdge}) {
    grips_.push_back(new ResizeGrip(edges, *this, [this] {
      if (callbacks_.cancelSystemDrag) callbacks_.cancelSystemDrag();
    }));
  }
}

void PanelWidget::setBackgroundColor(const QColor& color) {
  background_ = color;
  update();
}

void PanelWidget::setContent(QWidget* content) {
  if (content_ && content_ != content) content_->deleteLater();
  content_ = content;
  if (content_) {
    content_->setParent(this);
    content_->show();
  }
  layoutChildren();
  raiseOverlays();
}

void PanelWidget::raiseOverlays() {
  for (auto* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (child != content_) child->raise();
  }
}

void PanelWidget::layoutChildren() {
  if (content_) content_->setGeometry(rect());
  const int w = width(), h = height();
  for (auto* grip : grips_) {
    const auto e = grip->edges();
    const bool corner =
        (e & (Qt::LeftEdge | Qt::RightEdge)) && (e & (Qt::TopEdge | Qt::BottomEdge));
    const int gw = corner ? cornerGrip : (e & (Qt::LeftEdge | Qt::RightEdge)) ? gripThickness : w;
    const int gh = corner ? cornerGrip : (e & (Qt::TopEdge | Qt::BottomEdge)) ? gripThickness : h;
    const int x = (e & Qt::RightEdge) ? w - gw : 0;
    const int y = (e & Qt::BottomEdge) ? h - gh : 0;
    grip->setGeometry(x, y, gw, gh);
    if (corner) grip->raise();
  }
}

// Without a compositor a clear colour would show garbage, so the background is painted over
// the palette's window colour.
void PanelWidget::paintEvent(QPaintEvent*) {
  if (callbacks_.painted) callbacks_.painted();
  QPainter painter(this);
  if (config_.face) {
    // The shape mask has hard edges: the pixels it keeps along the rim take the colour of the
    // face's bottom layer instead of blending its antialiasing with the window background.
    const auto& commands = config_.face->commands;
    if (isRound(config_) && !commands.empty())
      painter.fillRect(rect(), toQColor(commands.front().color));
    paintDrawing(painter, *config_.face, QRectF(rect()));
    return;
  }
  painter.fillRect(rect(), palette().color(QPalette::Window));
  painter.fillRect(rect(), background_);
}

void PanelWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !config_.movableByBackground) {
    return QWidget::mousePressEvent(event);
  }
  event->accept();
  if (isRound(config_)) {
    selfDrag_ = SelfDrag{toNative(event->globalPosition()), toNative(geometry()).origin()};
  } else {
    systemMovePending_ = event->globalPosition();
  }
}

void PanelWidget::mouseMoveEvent(QMouseEvent* event) {
  if (!(event->buttons() & Qt::LeftButton)) return QWidget::mouseMoveEvent(event);
  if (selfDrag_) return dragWith(*event);
  if (systemMovePending_ &&
      QLineF(*systemMovePending_, event->globalPosition()).length() >= systemDragThreshold) {
    systemMovePending_.reset();
    startSystemMove();
  }
}

void PanelWidget::startSystemMove() {
  auto* handle = windowHandle();
  if (!handle) return;
  systemMoveRequested_ = handle->startSystemMove();
  if (systemMoveRequested_ && callbacks_.systemMoveStarted) callbacks_.systemMoveStarted();
}

// Follows the pointer as the event saw it, not as it is now.
void PanelWidget::dragWith(const QMouseEvent& event) {
  const Point pointer = toNative(event.globalPosition());
  const Point origin{selfDrag_->originAtPress.x + pointer.x - selfDrag_->pointerAtPress.x,
                     selfDrag_->originAtPress.y + pointer.y - selfDrag_->pointerAtPress.y};
  if (callbacks_.dragTo) callbacks_.dragTo(origin);
}

// Once the window manager runs a move it has the pointer, and the release never reaches us.
// A flick may bring its release with no motion before it: the release ends the drag where it is.
void PanelWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    if (selfDrag_ && toNative(event->globalPosition()) != selfDrag_->pointerAtPress) {
      dragWith(*event);
    }
    selfDrag_.reset();
    systemMovePending_.reset();
    if (std::exchange(systemMoveRequested_, false) && callbacks_.cancelSystemDrag) {
      callbacks_.cancelSystemDrag();
    }
  }
  QWidget::mouseReleaseEvent(event);
}

void PanelWidget::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  if (callbacks_.geometryChanged) callbacks_.geometryChanged();
}

void PanelWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layoutChildren();
  if (callbacks_.geometryChanged) callbacks_.geometryChanged();
}

}  // namespace orlet::linux_qt
