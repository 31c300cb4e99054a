#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>

#include <set>

#include "XProbe.h"
#include "linux/capture/X11CaptureService.h"
#include "linux/qt/QtScheduler.h"
#include "linux/qt/views/DisplayPreviewView.h"
#include "linux/qt/views/FrameView.h"
#include "linux/views/QtTestSupport.h"
#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"
#include "views/FakeDisplayInfoProvider.h"
#include "views/FakeScreenCapturePermission.h"

namespace orlet::linux_qt {
namespace {

// A picture whose left half is red and right half blue, with the padding byte left at zero as
// the X server leaves it in 24-bit pixmaps.
FrameRef halvesFrame(int width, int height) {
  auto frame = Frame::allocate(width, height);
  for (int y = 0; y < height; ++y) {
    auto* row = reinterpret_cast<std::uint32_t*>(frame->mutableRow(y));
    for (int x = 0; x < width; ++x) row[x] = x < width / 2 ? 0x00FF0000u : 0x000000FFu;
  }
  return frame;
}

// What `view` paints over `background`, opacity included: the padding byte must never make a
// pixel see-through.
QImage shot(FrameView& view, QColor background) {
  QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(background);
  view.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
  return image;
}

TEST(FrameView, PaintsTheFrameAspectFittedOverItsBackground) {
  FrameView view({200, 100}, {});
  view.setAttribute(Qt::WA_NoSystemBackground, false);
  view.resize(400, 400);
  view.setFrame(halvesFrame(200, 100));
  EXPECT_EQ(view.pictureRect(), QRectF(0, 100, 400, 200));
  const QImage painted = shot(view, Qt::green);
  EXPECT_EQ(painted.pixelColor(100, 200), QColor(255, 0, 0));
  EXPECT_EQ(painted.pixelColor(300, 200), QColor(0, 0, 255));
  EXPECT_EQ(painted.pixelColor(200, 50), QColor(Qt::green));   // band above: not painted
  EXPECT_EQ(painted.pixelColor(200, 350), QColor(Qt::green));  // band below
  EXPECT_EQ(painted.pixelColor(0, 100), QColor(255, 0, 0));    // the picture reaches its corner

  view.setFrame(nullptr);  // capture stopped: nothing but the loading indicator
  EXPECT_EQ(shot(view, Qt::green).pixelColor(100, 200), QColor(Qt::green));
}

TEST(FrameView, CardThumbnailHasRoundedCornersAndASoftShadow) {
  FrameView view({200, 100}, {8, 6, QStringLiteral("Chargement...")});
  view.resize(252, 132);  // a 240 x 120 picture inside the shadow's margins
  view.setFrame(halvesFrame(200, 100));
  EXPECT_EQ(view.pictureRect(), QRectF(6, 6, 240, 120));
  const QImage painted = shot(view, Qt::white);
  EXPECT_EQ(painted.pixelColor(60, 66), QColor(255, 0, 0));
  EXPECT_EQ(painted.pixelColor(180, 66), QColor(0, 0, 255));
  // The picture's own corner is cut off, and shows the shadow's grey, not the picture.
  const QColor corner = painted.pixelColor(6, 6);
  EXPECT_EQ(corner.red(), corner.blue());
  EXPECT_LT(corner.red(), 255);
  // The shadow darkens the margin beside the picture and fades out towards the widget's edge.
  const int nearSide = painted.pixelColor(4, 66).red();
  EXPECT_LT(nearSide, 250);
  EXPECT_GT(painted.pixelColor(0, 66).red(), nearSide);
}

TEST(DisplayPreviewView, OverlaysCoverTheWholeMirror) {
  test::VirtualScheduler scheduler;
  NotificationCenter center;
  test::FakeCaptureService capture{scheduler};
  test::FakeScreenCapturePermission permission{scheduler};
  test::FakeDisplayInfoProvider info;
  MirrorViewPorts ports{scheduler, center, capture, permission, info, [] { return true; }, {}};
  DisplayPreviewView mirror(
      ports, test::makeDisplay(5, 1920, 1080), true, [] {}, 1);
  auto* overlay = new QLabel;
  mirror.addOverlay(overlay);
  mirror.resize(400, 300);
  mirror.show();
  ASSERT_TRUE(test::processEventsUntil([&] { return mirror.isVisible(); }));
  EXPECT_EQ(overlay->parentWidget(), &mirror);
  EXPECT_EQ(overlay->geometry(), QRect(0, 0, 400, 300));
}

// On the real capture path the mirror paints the very frames the capture thread filled (reduced
// to the size they are shown at): the one it holds is the one the capture published, and their
// pixels are the few buffers the capture reuses, however many pictures go by. A copy anywhere on
// the way gives fresh pixels each time.
TEST(DisplayPreviewView, PaintsTheCapturedFramesWithoutCopyingThem) {
  QtScheduler scheduler;
  NotificationCenter center;
  linux_capture::X11CaptureService capture{scheduler};
  test::FakeScreenCapturePermission permission{scheduler};
  test::FakeDisplayInfoProvider info;
  std::optional<Display> main;
  capture.shareableContent([&](std::optional<ShareableContent> content, auto) {
    for (const auto& d : content ? content->displays : std::vector<Display>{}) {
      if (d.isMain) main = d;
    }
  });
  ASSERT_TRUE(test::processEventsUntil([&] { return main.has_value(); }));
  MirrorViewPorts ports{scheduler, center, capture, permission, info, [] { return true; }, {}};
  DisplayPreviewView mirror(
      ports, *main, true, [] {}, 1);
  mirror.resize(400, 300);
  mirror.show();
  const auto* frameView = mirror.findChild<FrameView*>();
  x11test::XProbe painter;
  const x11test::WindowRect spot{1700, 900, 100, 100};
  const xcb_window_t canvas = painter.paint(spot, 0x000000);
  std::set<const std::uint8_t*> buffers;
  for (std::uint32_t i = 1; i <= 8; ++i) {
    const std::uint32_t colour = 0x102030 * i;
    painter.fill(canvas, {0, 0, spot.width, spot.height}, colour);
    ASSERT_TRUE(test::processEventsUntil([&] {
      // Frames come reduced to the picture's size: the middle of the spot, scaled.
      const FrameRef& shown = frameView->frame();
      return shown && (shown->pixel((spot.x + 50) * shown->width() / main->width,
                                    (spot.y + 50) * shown->height() / main->height) &
                       0xFFFFFF) == colour;
    })) << i;
    EXPECT_EQ(frameView->frame(), mirror.model().cm().currentFrame.get());
    buffers.insert(frameView->frame()->pixels());
  }
  EXPECT_LE(buffers.size(), 3u);
  // Reduced once, on the capture thread, to the size drawn: painting copies them one to one.
  const QSize picture = frameView->pictureRect().toRect().size();
  EXPECT_TRUE(test::processEventsUntil([&] {
    const FrameRef& shown = frameView->frame();
    return shown && QSize(shown->width(), shown->height()) == picture;
  }));
  mirror.hide();
}

}  // namespace
}  // namespace orlet::linux_qt
