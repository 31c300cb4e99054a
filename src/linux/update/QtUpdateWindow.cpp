#include "linux/update/QtUpdateWindow.h"

#include "linux/update/ReleaseNotesView.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "linux/qt/HomeScreen.h"

namespace orlet::linux_update {

namespace {

constexpr int windowWidth = 460;
constexpr int notesHeight = 160;

// Runs a stored choice once: the handler may replace the window's content (and with it the
// stored function) while it runs.
void runChoice(const std::function<void()>& stored) {
  if (auto handler = stored) handler();
}

}  // namespace

QtUpdateWindow::QtUpdateWindow() : QWidget(nullptr, Qt::Window) {
  setWindowTitle(QStringLiteral("Mise à jour d'ORLET"));
  setObjectName(QStringLiteral("orlet-update"));
  build();
}

void QtUpdateWindow::build() {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(20, 20, 20, 20);
  layout->setSpacing(12);
  title_ = new QLabel(this);
  QFont bold = title_->font();
  bold.setBold(true);
  bold.setPointSizeF(bold.pointSizeF() * 1.15);
  title_->setFont(bold);
  title_->setWordWrap(true);
  message_ = new QLabel(this);
  message_->setWordWrap(true);
  notes_ = new ReleaseNotesView(this);
  notes_->setFixedHeight(notesHeight);
  link_ = new QLabel(this);
  connect(link_, &QLabel::linkActivated, this,
          [](const QString& link) { ReleaseNotesView::openIfHttps(QUrl(link)); });
  progress_ = new QProgressBar(this);
  progress_->setRange(0, 1000);
  progress_->setTextVisible(false);
  primary_ = new QPushButton(this);
  secondary_ = new QPushButton(this);
  primary_->setDefault(true);
  connect(primary_, &QPushButton::clicked, this, [this] { runChoice(onPrimary_); });
  connect(secondary_, &QPushButton::clicked, this, [this] { runChoice(onSecondary_); });
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(secondary_);
  buttons->addWidget(primary_);
  for (QWidget* w : {static_cast<QWidget*>(title_), static_cast<QWidget*>(message_),
                     static_cast<QWidget*>(notes_), static_cast<QWidget*>(link_),
                     static_cast<QWidget*>(progress_)})
    layout->addWidget(w);
  layout->addLayout(buttons);
  setFixedWidth(windowWidth);
}

void QtUpdateWindow::show(const UpdateScreen& screen, std::function<void()> onPrimary,
                          std::function<void()> onSecondary) {
  onPrimary_ = std::move(onPrimary);
  onSecondary_ = std::move(onSecondary);
  title_->setText(QString::fromStdString(screen.title));
  message_->setText(QString::fromStdString(screen.message));
  notes_->setVisible(!screen.releaseNotes.empty());
  notes_->setHtml(QString::fromStdString(screen.releaseNotes));
  const auto link = QString::fromStdString(screen.releaseNotesLink).toHtmlEscaped();
  link_->setVisible(!link.isEmpty() && screen.releaseNotes.empty());
  link_->setText(QStringLiteral("<a href=\"%1\">Notes de version</a>").arg(link));
  const bool downloading = screen.step == UpdateScreen::Step::downloading;
  const bool busy = downloading || screen.step == UpdateScreen::Step::checking ||
                    screen.step == UpdateScreen::Step::verifying;
  progress_->setVisible(busy);
  if (downloading && screen.progress >= 0) {
    progress_->setRange(0, 1000);
    progress_->setValue(static_cast<int>(screen.progress * 1000));
  } else {
    progress_->setRange(0, 0);  // indeterminate
  }
  primary_->setText(QString::fromStdString(screen.primaryButton));
  primary_->setVisible(!screen.primaryButton.empty());
  secondary_->setText(QString::fromStdString(screen.secondaryButton));
  secondary_->setVisible(!screen.secondaryButton.empty());
  secondary_->setDefault(screen.primaryButton.empty());
  adjustSize();
  if (!isVisible()) linux_qt::centreOnHomeScreen(*this);
  QWidget::show();
  raise();
  activateWindow();
}

void QtUpdateWindow::closeEvent(QCloseEvent* event) {
  // The application closing its windows as it quits is not the operator's choice.
  if (!event->spontaneous()) return event->accept();
  event->ignore();
  if (secondary_->isVisible()) runChoice(onSecondary_);
}

}  // namespace orlet::linux_update
