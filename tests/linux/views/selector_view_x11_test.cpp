#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include "linux/qt/views/BusyIndicator.h"
#include "linux/qt/views/DetailsPopover.h"
#include "linux/qt/views/DisplayGridView.h"
#include "linux/qt/views/DisplayPreviewView.h"
#include "linux/qt/views/FrameView.h"
#include "linux/qt/views/PermissionCardView.h"
#include "linux/qt/views/WindowSelectorView.h"
#include "linux/views/QtTestSupport.h"
#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"
#include "views/FakeDisplayInfoProvider.h"
#include "views/FakeScreenCapturePermission.h"

// The panel's views on a real X server, fed by the fake capture service on a virtual clock:
// what is on screen after each step of the operator.
namespace orlet::linux_qt {
namespace {

using test::processEventsUntil;

class SelectorViewTest : public ::testing::Test {
 protected:
  SelectorViewTest() {
    capture.displays = {second, mainDisplay};
    // Each capture shows its first picture 50 ms after it started.
    capture.samples[1] = capture.samples[2] = {test::FakeSample{Seconds{0.05}}};
    info.displays[2] = {
        {597, 336}, ScreenDescription{"ORLET Studio", 60, std::nullopt}, "R8G8B8", second.frame};
    view.resize(900, 600);
  }
  ~SelectorViewTest() override { view.hide(); }

  void showPanel() {
    view.show();
    center.post(notification::windowDidShow);
    ASSERT_TRUE(processEventsUntil([&] { return view.isVisible(); }));
  }
  // Runs the virtual clock and then the toolkit's events that follow from it.
  void advance(double seconds) {
    scheduler.advance(Seconds{seconds});
    test::processPendingEvents();
  }
  static QString loadingText(const FrameView* frameView) {
    const auto* busy = frameView->findChild<BusyIndicator*>();
    return busy && busy->isVisible() ? busy->label() : QString();
  }

  test::VirtualScheduler scheduler;
  NotificationCenter center;
  test::FakeCaptureService capture{scheduler};
  test::FakeScreenCapturePermission permission{scheduler};
  test::FakeDisplayInfoProvider info;
  bool backButtonVisible = false;
  Subscription showBack =
      center.observe(notification::showBackButton, [this] { backButtonVisible = true; });
  Subscription hideBack =
      center.observe(notification::hideBackButton, [this] { backButtonVisible = false; });
  const Display mainDisplay = test::makeDisplay(1, 1920, 1080, 0, true);
  const Display second = test::makeDisplay(2, 2560, 1440, 1920);
  MirrorViewPorts ports{
      scheduler, center, capture, permission, info, [this] {
                          return view.isVisible(); }, {}};
  WindowSelectorView view{ports};
};

TEST_F(SelectorViewTest, WithoutPermissionTheCardSaysSoInRedAndOpensTheSettings) {
  showPanel();
  advance(1);
  EXPECT_TRUE(view.permissionCard()->isVisible());
  EXPECT_FALSE(view.grid()->isVisible());
  EXPECT_EQ(view.permissionCard()->statusText(), "Statut : Non autorisée");
  int statusLabels = 0;
  for (auto* label : view.permissionCard()->findChildren<QLabel*>()) {
    if (!label->text().startsWith("Statut")) continue;
    ++statusLabels;
    EXPECT_EQ(label->palette().color(QPalette::WindowText), QColor(255, 59, 48));
  }
  EXPECT_EQ(statusLabels, 1);
  view.permissionCard()->settingsButton()->click();
  EXPECT_TRUE(permission.settingsOpen);

  permission.answer(true);
  advance(0);
  EXPECT_TRUE(view.loadingIndicator()->isVisible());
  EXPECT_EQ(view.loadingIndicator()->label(), "Chargement des écrans...");
}

TEST_F(SelectorViewTest, GridListsLiveCardsMainFirstAndEnlargesTheChosenOne) {
  permission.granted = true;
  showPanel();
  advance(0.22);  // the list is in (0.1 s of test capture per display); no card frame yet
  ASSERT_TRUE(view.grid()->isVisible());
  const auto cards = view.grid()->cards();
  ASSERT_EQ(cards.size(), 2u);
  EXPECT_EQ(cards[0]->model().display().displayID, 1u);
  EXPECT_EQ(cards[0]->findChild<QLabel*>()->text(), "Principal");
  EXPECT_EQ(cards[1]->findChild<QLabel*>()->text(), "Écran 2");
  EXPECT_EQ(cards[1]->infoButton()->text(), "•••");
  // Side by side in a 900-wide panel, each with its own capture, "Chargement..." until a frame.
  EXPECT_EQ(cards[0]->geometry().top(), cards[1]->geometry().top());
  EXPECT_LT(cards[0]->geometry().right(), cards[1]->geometry().left());
  const auto* thumbnail = cards[1]->findChild<FrameView*>();
  EXPECT_EQ(loadingText(thumbnail), "Chargement...");
  advance(0.1);
  EXPECT_NE(thumbnail->frame(), nullptr);
  EXPECT_EQ(loadingText(thumbnail), "");
  // Four columns of at least 200 fit in 900: each thumbnail is as wide as its column allows,
  // at most 120 high.
  const QRectF picture = thumbnail->pictureRect();
  EXPECT_NEAR(picture.width() / picture.height(), 2560.0 / 1440.0, 1e-9);
  EXPECT_DOUBLE_EQ(picture.width(), thumbnail->contentsRect().width());
  EXPECT_LE(picture.height(), 120);

  test::click(cards[1], QPoint(cards[1]->width() / 2, 40));
  advance(0);
  ASSERT_NE(view.enlarged(), nullptr);
  EXPECT_TRUE(view.enlarged()->isVisible());
  EXPECT_FALSE(view.grid()->isVisible());
  EXPECT_TRUE(backButtonVisible);
  EXPECT_EQ(view.enlarged()->model().displayIndex(), 2);
  const auto* mirror = view.enlarged()->findChild<FrameView*>();
  EXPECT_EQ(loadingText(mirror), "Chargement du flux vidéo...");
  advance(0.1);
  EXPECT_EQ(loadingText(mirror), "");
  // 2560 x 1440 fitted into 900 x 600: full width, bands above and below.
  EXPECT_EQ(view.enlarged()->pictureRect(), QRectF(0, 46.875, 900, 506.25));
  // Only the mirror captures now: the cards stopped with the grid.
  int running = 0;
  for (const auto& s : capture.streams) running += s->isRunning() ? 1 : 0;
  EXPECT_EQ(running, 1);

  center.post(notification::backButtonPressed);
  advance(0);
  EXPECT_EQ(view.enlarged(), nullptr);
  EXPECT_TRUE(view.grid()->isVisible());
  EXPECT_FALSE(backButtonVisible);
}

TEST_F(SelectorViewTest, DetailsPopoverShowsTheDisplayFactsWithoutTakingTheFocus) {
  permission.granted = true;
  showPanel();
  advance(1);
  auto* card = view.grid()->cards()[1];
  card->infoButton()->click();
  advance(0);
  ASSERT_NE(card->popover(), nullptr);
  ASSERT_TRUE(processEventsUntil([&] { return card->popover()->isVisible(); }));
  EXPECT_EQ(card->popover()->text(), "ORLET Studio\n27\"\n2560 × 1440\n16/9\n60 Hz\n8-bit");
  EXPECT_TRUE(card->popover()->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
  EXPECT_NE(QApplication::activeWindow(), card->popover());
  // Below the button, pointing at it.
  const QRect button(card->infoButton()->mapToGlobal(QPoint(0, 0)), card->infoButton()->size());
  EXPECT_GE(card->popover()->geometry().top(), button.bottom());

  // A press elsewhere in the panel closes it, and the button opens it again.
  test::click(view.grid()->viewport(), QPoint(5, 5));
  advance(0);
  EXPECT_FALSE(card->popover()->isVisible());
  EXPECT_FALSE(card->model().showingInfo.get());
  card->infoButton()->click();
  advance(0);
  EXPECT_TRUE(card->popover()->isVisible());
  card->infoButton()->click();
  advance(0);
  EXPECT_FALSE(card->popover()->isVisible());
}

}  // namespace
}  // namespace orlet::linux_qt
