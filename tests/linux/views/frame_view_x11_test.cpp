#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>

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

// The painted colour, opacity included: the padding byte must never make a pixel see-through.
QColor pixelAt(const QImage& image, QPointF p) {
  return image.pixelColor(p.toPoint());
}

TEST(FrameView, PaintsTheFrameAspectFittedOverItsBackground) {
  FrameView view({200, 100}, {});
  view.setAttribute(Qt::WA_NoSystemBackground, false);
  view.resize(400, 400);
  view.setFrame(halvesFrame(200, 100));
  EXPECT_EQ(view.pictureRect(), QRectF(0, 100, 400, 200));

  QImage shot(view.size(), QImage::Format_ARGB32_Premultiplied);
  shot.fill(Qt::green);
  view.render(&shot, QPoint(), QRegion(), QWidget::DrawChildren);
  EXPECT_EQ(pixelAt(shot, {100, 200}), QColor(255, 0, 0));
  EXPECT_EQ(pixelAt(shot, {300, 200}), QColor(0, 0, 255));
  EXPECT_EQ(pixelAt(shot, {200, 50}), QColor(Qt::green));   // band above: not painted
  EXPECT_EQ(pixelAt(shot, {200, 350}), QColor(Qt::green));  // band below
  EXPECT_EQ(pixelAt(shot, {0, 100}), QColor(255, 0, 0));    // the picture reaches its corner

  view.setFrame(nullptr);  // capture stopped: nothing but the loading indicator
  shot.fill(Qt::green);
  view.render(&shot, QPoint(), QRegion(), QWidget::DrawChildren);
  EXPECT_EQ(pixelAt(shot, {100, 200}), QColor(Qt::green));
}

TEST(FrameView, CardThumbnailHasRoundedCornersAndASoftShadow) {
  FrameView view({200, 100}, {8, 6, QStringLiteral("Chargement...")});
  view.resize(252, 132);  // a 240 x 120 picture inside the shadow's margins
  view.setFrame(halvesFrame(200, 100));
  EXPECT_EQ(view.pictureRect(), QRectF(6, 6, 240, 120));

  QImage shot(view.size(), QImage::Format_ARGB32_Premultiplied);
  shot.fill(Qt::white);
  view.render(&shot, QPoint(), QRegion(), QWidget::DrawChildren);
  EXPECT_EQ(pixelAt(shot, {60, 66}), QColor(255, 0, 0));
  EXPECT_EQ(pixelAt(shot, {180, 66}), QColor(0, 0, 255));
  // The picture's own corner is cut off, and shows the shadow's grey, not the picture.
  const QColor corner = pixelAt(shot, {6, 6});
  EXPECT_NE(corner, QColor(255, 0, 0));
  EXPECT_EQ(corner.red(), corner.blue());
  EXPECT_LT(corner.red(), 255);
  // The shadow darkens the margin beside the picture and fades out towards the widget's edge.
  const int nearSide = pixelAt(shot, {4, 66}).red();
  const int farSide = pixelAt(shot, {0, 66}).red();
  EXPECT_LT(nearSide, 250);
  EXPECT_GT(farSide, nearSide);
}

TEST(FrameView, MirrorOverlaysCoverTheViewAndShareThePictureRect) {
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
  EXPECT_EQ(overlay->geometry(), QRect(0, 0, 400, 300));
  EXPECT_EQ(mirror.pictureRect(), QRectF(0, 37.5, 400, 225));
  EXPECT_EQ(overlay->parentWidget(), &mirror);
}

}  // namespace
}  // namespace orlet::linux_qt
