#include "linux/qt/QtSettingsPanel.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWindow>

#include "linux/qt/HomeScreen.h"

namespace orlet::linux_qt {
namespace {

constexpr int panelWidth = 320;
constexpr int spacing = 12;
// The shortcut's rows keep their places; the start-up option and the editor add their rows, each
// with a spacing, below them.
constexpr int autostartRowHeight = 20;
constexpr int shortcutPanelHeight = 140 + spacing + autostartRowHeight;
constexpr int recorderWidth = 130;
constexpr int recorderHeight = 26;
// What the button's bevel and margins leave of its width, in the styles Qt brings.
constexpr int recorderPadding = 8;
constexpr int recorderPixelSize = 12;
constexpr int smallestRecorderPixelSize = 8;

// Monospaced, 12 pixels (a point of the panel's design is a logical pixel), smaller for a text
// that would not fit the button otherwise ("Cliquer pour définir" does not at 12).
QFont recorderFont(const QString& text) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setWeight(QFont::Medium);
  for (int size = recorderPixelSize; size >= smallestRecorderPixelSize; --size) {
    font.setPixelSize(size);
    if (QFontMetrics(font).horizontalAdvance(text) <= recorderWidth - 2 * recorderPadding) break;
  }
  return font;
}

}  // namespace

QtSettingsPanel::QtSettingsPanel(const x11::XConnection& x, const SettingsParts& parts,
                                 std::function<void()> onClose)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowCloseButtonHint | Qt::WindowDoesNotAcceptFocus),
      recorder_(parts.recorder),
      autostart_(parts.autostart),
      onClose_(std::move(onClose)) {
  setWindowTitle(QStringLiteral("Paramètres"));
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_X11DoNotAcceptFocus);
  build();
  editorRow_ = new EditorRow(parts.editor, parts.editorChoice, this);
  layout()->addWidget(editorRow_);
  editorRow_->onHeightChange([this] { fitHeight(); });
  fitHeight();
  observeRecorder();
  refresh();
  winId();  // the X window now, so that its hints are set before it is mapped
  x11_.emplace(x, static_cast<xcb_window_t>(winId()));
  x11_->refuseFocus();
  windowHandle()->installEventFilter(this);
  centre();
}

void QtSettingsPanel::build() {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(20, 20, 20, 20);
  column->setSpacing(spacing);
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel(QStringLiteral("Raccourci clavier")));
  row->addStretch();
  recorderButton_ = new QPushButton;
  recorderButton_->setFixedSize(recorderWidth, recorderHeight);
  recorderButton_->setFocusPolicy(Qt::NoFocus);  // Space and Return are keys to record
  connect(recorderButton_, &QPushButton::clicked, this, [this] {
    if (*recorder_.isRecording) {
      recorder_.stopRecording();
    } else {
      recorder_.startRecording();
    }
  });
  row->addWidget(recorderButton_);
  column->addLayout(row);
  error_ = new QLabel;
  error_->setWordWrap(true);
  error_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  error_->setStyleSheet(QStringLiteral("color: red; font-size: 10px;"));
  column->addWidget(error_);
  auto* bottom = new QHBoxLayout;
  bottom->addStretch();
  validate_ = new QPushButton(QStringLiteral("Valider"));
  validate_->setDefault(true);
  validate_->setFocusPolicy(Qt::NoFocus);
  validate_->setStyleSheet(QStringLiteral(
      "QPushButton { background: palette(highlight); color: palette(highlighted-text);"
      " border-radius: 5px; padding: 4px 14px; }"
      "QPushButton:disabled { background: palette(mid); color: palette(dark); }"));
  connect(validate_, &QPushButton::clicked, this, [this] {
    recorder_.saveToDefaults();
    onClose_();
  });
  // Only while a window manager gives the panel the focus anyway; it never asks for it.
  auto* returnKey = new QShortcut(QKeySequence(Qt::Key_Return), this);
  connect(returnKey, &QShortcut::activated, validate_, &QPushButton::click);
  bottom->addWidget(validate_);
  column->addLayout(bottom);
  addAutostart(*column);
}

void QtSettingsPanel::addAutostart(QLayout& column) {
  autostartBox_ = new QCheckBox(QStringLiteral("Lancer ORLET à l'ouverture de session"));
  autostartBox_->setFixedHeight(autostartRowHeight);
  autostartBox_->setFocusPolicy(Qt::NoFocus);
  autostartBox_->setChecked(autostart_.isEnabled());
  connect(autostartBox_, &QCheckBox::toggled, this, [this](bool on) {
    // What is on disk decides: a refused write leaves the box as the entry is.
    if (!autostart_.setEnabled(on)) autostartBox_->setChecked(autostart_.isEnabled());
  });
  column.addWidget(autostartBox_);
}

// The recorder publishes before it stores: the new state is read one turn later.
void QtSettingsPanel::observeRecorder() {
  auto later = [this] {
    QMetaObject::invokeMethod(
        this, [this] { refresh(); }, Qt::QueuedConnection);
  };
  subscriptions_.push_back(recorder_.isRecording.observe([later](bool) { later(); }));
  subscriptions_.push_back(recorder_.currentChars.observe([later](const auto&) { later(); }));
  subscriptions_.push_back(recorder_.currentModifiers.observe([later](auto) { later(); }));
  subscriptions_.push_back(recorder_.errorMessage.observe([later](const auto&) { later(); }));
}

void QtSettingsPanel::refresh() {
  const bool recording = *recorder_.isRecording;
  const auto text =
      recording ? QStringLiteral("Appuyez...") : QString::fromStdString(recorder_.displayText());
  recorderButton_->setFont(recorderFont(text));
  recorderButton_->setText(text);
  error_->setText(QString::fromStdString(*recorder_.errorMessage));
  error_->setVisible(!recorder_.errorMessage->empty());
  validate_->setEnabled(!recording);
}

void QtSettingsPanel::fitHeight() {
  setFixedSize(panelWidth, shortcutPanelHeight + spacing + editorRow_->rowHeight());
}

void QtSettingsPanel::centre() {
  centreOnHomeScreen(*this);
}

void QtSettingsPanel::orderFrontRegardless() {
  if (!QWidget::isVisible()) {
    centre();
    x11_->prepareForMap(true, true);
    show();
  }
  x11_->raise();
}

void QtSettingsPanel::closeEvent(QCloseEvent* event) {
  willClose_.call();
  event->accept();
}

bool QtSettingsPanel::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease &&
      static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
    leftUp_.call();
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace orlet::linux_qt
