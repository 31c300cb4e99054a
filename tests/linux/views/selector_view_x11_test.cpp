#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <filesystem>

#include "Session.h"
#include "XProbe.h"
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
      scheduler, center, capture, permission, info, [this] { return view.isVisible(); }, {}};
  WindowSelectorView view{ports};
};

TEST_F(SelectorViewTest, WithoutPermissionTheCardSaysSoInRedAndOpensTheSettings) {
  showPanel();
  advance(1);
  auto* card = view.permissionCard();
  EXPECT_TRUE(card->isVisible());
  EXPECT_FALSE(view.grid()->isVisible());
  EXPECT_EQ(card->statusText(), "Statut : Non autorisée");
  const auto labels = card->findChildren<QLabel*>();
  const auto status = std::find_if(labels.begin(), labels.end(),
                                   [](QLabel* l) { return l->text().startsWith("Statut"); });
  ASSERT_NE(status, labels.end());
  EXPECT_EQ((*status)->palette().color(QPalette::WindowText), QColor(255, 59, 48));
  // The card shows only where X11 cannot capture (a Wayland session): it names the way out.
  const auto caption = std::find_if(labels.begin(), labels.end(),
                                    [](QLabel* l) { return l->text().startsWith("Pour"); });
  ASSERT_NE(caption, labels.end());
  EXPECT_EQ((*caption)->text(),
            "Pour continuer, ouvre une session X11 : sur l'écran de connexion, choisis "
            "« Ubuntu sur Xorg » ou « GNOME sur Xorg ».");
  card->settingsButton()->click();
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
  EXPECT_EQ(cards[0]->findChild<QLabel*>()->text(), "Principal");
  EXPECT_EQ(cards[1]->findChild<QLabel*>()->text(), "Écran 2");
  // Each card has its own capture, and says "Chargement..." until its first picture.
  const auto* thumbnail = cards[1]->findChild<FrameView*>();
  EXPECT_EQ(loadingText(thumbnail), "Chargement...");
  advance(0.1);
  EXPECT_NE(thumbnail->frame(), nullptr);
  EXPECT_EQ(loadingText(thumbnail), "");

  test::click(cards[1], QPoint(cards[1]->width() / 2, 40));
  advance(0);
  ASSERT_NE(view.enlarged(), nullptr);
  EXPECT_FALSE(view.grid()->isVisible());
  EXPECT_TRUE(backButtonVisible);
  EXPECT_EQ(view.enlarged()->model().displayIndex(), 2);
  const auto* mirror = view.enlarged()->findChild<FrameView*>();
  EXPECT_EQ(loadingText(mirror), "Chargement du flux vidéo...");
  advance(0.1);
  EXPECT_EQ(loadingText(mirror), "");
  // Only the mirror captures now: the cards stopped with the grid.
  EXPECT_EQ(std::count_if(capture.streams.begin(), capture.streams.end(),
                          [](const auto& s) { return s->isRunning(); }),
            1);

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
  x11test::XProbe x;
  const xcb_window_t focus = x.inputFocus();
  card->infoButton()->click();
  advance(0);
  ASSERT_NE(card->popover(), nullptr);
  ASSERT_TRUE(processEventsUntil([&] { return card->popover()->isVisible(); }));
  EXPECT_EQ(card->popover()->text(), "ORLET Studio\n27\"\n2560 × 1440\n16/9\n60 Hz\n8-bit");
  // The window manager had its turn: the keyboard stays where it was.
  test::processPendingEvents();
  EXPECT_EQ(x.inputFocus(), focus);
  // Below the button, pointing at it.
  const QRect button(card->infoButton()->mapToGlobal(QPoint(0, 0)), card->infoButton()->size());
  EXPECT_GE(card->popover()->geometry().top(), button.bottom());

  // A press elsewhere in the panel closes it; the button opens and closes it.
  test::click(view.grid()->viewport(), QPoint(5, 5));
  advance(0);
  EXPECT_FALSE(card->popover()->isVisible());
  for (const bool open : {true, false}) {
    card->infoButton()->click();
    advance(0);
    EXPECT_EQ(card->popover()->isVisible(), open);
  }
}

// A press in another application, the editor in front, closes the popover as it closes any
// popover; the press reaches the editor, which stays the active application.
TEST_F(SelectorViewTest, DetailsPopoverClosesOnAPressInAnotherApplication) {
  const auto log = std::filesystem::temp_directory_path() / "orlet-popover-editor.log";
  std::filesystem::remove(log);
  x11test::Process editor({ORLET_STANDIN_BINARY, "--class", "CaptureOne", "--title",
                           "Capture One 23", "--geometry", "600x400+3000+700"},
                          {}, log.string());
  x11test::XProbe x;
  xcb_window_t editorWindow = XCB_NONE;
  ASSERT_TRUE(processEventsUntil([&] {
    const auto windows = x.topLevelsOf(editor.pid());
    const auto managed = x.clientList();
    for (const auto w : windows) {
      if (std::find(managed.begin(), managed.end(), w) != managed.end()) editorWindow = w;
    }
    return editorWindow != XCB_NONE;
  }));
  const auto xdotool = [](const std::string& arguments) {
    return std::system(("xdotool " + arguments).c_str()) == 0;
  };
  ASSERT_TRUE(xdotool("windowactivate --sync " + std::to_string(editorWindow)));

  permission.granted = true;
  showPanel();
  advance(1);
  auto* card = view.grid()->cards()[1];
  card->infoButton()->click();
  advance(0);
  ASSERT_TRUE(processEventsUntil([&] { return card->popover()->isVisible(); }));
  test::processPendingEvents();
  ASSERT_TRUE(xdotool("mousemove 3300 900 click 1"));
  EXPECT_TRUE(processEventsUntil([&] { return !card->popover()->isVisible(); }));
  advance(0);
  EXPECT_FALSE(card->model().showingInfo.get());
  EXPECT_TRUE(
      processEventsUntil([&] { return editor.output().find("click 1 ") != std::string::npos; }));
  EXPECT_EQ(x.activeWindow(), editorWindow);
  std::filesystem::remove(log);
}

}  // namespace
}  // namespace orlet::linux_qt
