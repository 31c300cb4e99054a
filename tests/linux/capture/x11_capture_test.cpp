// The capture engine against a real X server: an Xorg dummy session with DUMMY0 1920x1080 at
// 0,0 (primary) and DUMMY1 2560x1440 at 1920,0, started for this test on its own display.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "LoopScheduler.h"
#include "Session.h"
#include "XProbe.h"
#include "capture/DisplayManager.h"
#include "capture/VideoCaptureManager.h"
#include "foundation/RenderCounters.h"
#include "linux/capture/Grabber.h"
#include "linux/capture/SharedMemoryPool.h"
#include "linux/capture/WorkerThreads.h"
#include "linux/capture/X11CaptureService.h"

namespace orlet {
namespace {

constexpr const char* displayName = ORLET_CAPTURE_DISPLAY;
constexpr Seconds patience{10};

int shell(const std::string& command) {
  return std::system(("DISPLAY=" + std::string(displayName) + " " + command).c_str());
}

std::uint32_t rgb(const FrameRef& frame, int x, int y) {
  return frame->pixel(x, y) & 0xFFFFFF;
}

bool sameAsScreen(const FrameRef& frame, x11test::XProbe& painter, const Display& display) {
  const auto screen =
      painter.pixels({int(display.frame.x), int(display.frame.y), display.width, display.height});
  for (int y = 0; y < frame->height(); ++y) {
    for (int x = 0; x < frame->width(); ++x) {
      if (rgb(frame, x, y) != screen[std::size_t(y) * display.width + x]) return false;
    }
  }
  return true;
}

class X11CaptureTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(shell(std::string(ORLET_SOURCE_DIR) + "/scripts/xsession.sh start " + displayName +
                    " --no-wm"),
              0);
  }
  static void TearDownTestSuite() {
    shell(std::string(ORLET_SOURCE_DIR) + "/scripts/xsession.sh stop " + displayName);
  }

  void SetUp() override {
    displays.refresh();
    ASSERT_TRUE(scheduler.pumpUntil([&] { return !displays.isLoading.get(); }, patience));
    ASSERT_EQ(displays.displays->size(), 2u);
    primary = displays.displays->at(0);
    secondary = displays.displays->at(1);
  }

  test::LoopScheduler scheduler;
  std::unique_ptr<linux_capture::X11CaptureService> service =
      std::make_unique<linux_capture::X11CaptureService>(scheduler, displayName);
  DisplayManager displays{scheduler, *service};
  x11test::XProbe painter{displayName};
  Display primary;
  Display secondary;
};

TEST_F(X11CaptureTest, ListsEachMonitorOnceWithTheRandrPrimaryFirst) {
  EXPECT_TRUE(primary.isMain);
  EXPECT_EQ(primary.frame, (Rect{0, 0, 1920, 1080}));
  EXPECT_EQ(primary.width, 1920);
  EXPECT_FALSE(secondary.isMain);
  EXPECT_EQ(secondary.frame, (Rect{1920, 0, 2560, 1440}));
  EXPECT_EQ(secondary.height, 1440);
  EXPECT_NE(primary.displayID, secondary.displayID);
  EXPECT_EQ(displays.activeStreamCount(), 0u);
}

TEST_F(X11CaptureTest, FramesShowWhatWasDrawnOnTheirDisplayOnlyAndFollowChanges) {
  const xcb_window_t window = painter.paint({1920 + 100, 50, 300, 200}, 0xFF8000);
  VideoCaptureManager right(scheduler, *service);
  VideoCaptureManager left(scheduler, *service);
  right.startCapture(secondary);
  left.startCapture(primary);
  ASSERT_TRUE(scheduler.pumpUntil(
      [&] {
        return right.currentFrame.get() && rgb(right.currentFrame.get(), 250, 150) == 0xFF8000;
      },
      patience));
  ASSERT_TRUE(scheduler.pumpUntil([&] { return left.currentFrame.get() != nullptr; }, patience));
  const FrameRef first = right.currentFrame.get();
  EXPECT_EQ(first->width(), 2560);
  EXPECT_EQ(first->height(), 1440);
  EXPECT_EQ(rgb(first, 100, 50), 0xFF8000u);
  EXPECT_EQ(rgb(first, 399, 249), 0xFF8000u);
  EXPECT_NE(rgb(first, 400, 250), 0xFF8000u);
  EXPECT_NE(rgb(left.currentFrame.get(), 100 + 1920 - 1920, 50), 0xFF8000u);
  EXPECT_TRUE(sameAsScreen(left.currentFrame.get(), painter, primary));

  // A small change arrives as a new frame; the frame the view holds does not change under it.
  painter.fill(window, {10, 10, 16, 16}, 0x0000FF);
  ASSERT_TRUE(scheduler.pumpUntil(
      [&] { return rgb(right.currentFrame.get(), 100 + 10, 50 + 10) == 0x0000FF; }, patience));
  EXPECT_EQ(rgb(first, 110, 60), 0xFF8000u);
  EXPECT_TRUE(sameAsScreen(right.currentFrame.get(), painter, secondary));

  // Changes straddling both displays: each frame holds exactly its own part.
  painter.paint({1800, 600, 300, 100}, 0x00C000);
  ASSERT_TRUE(scheduler.pumpUntil(
      [&] {
        return rgb(right.currentFrame.get(), 0, 600) == 0x00C000 &&
               rgb(left.currentFrame.get(), 1919, 699) == 0x00C000;
      },
      patience));
  EXPECT_TRUE(sameAsScreen(right.currentFrame.get(), painter, secondary));
  EXPECT_TRUE(sameAsScreen(left.currentFrame.get(), painter, primary));
  right.stopCapture();
  left.stopCapture();
  ASSERT_TRUE(scheduler.pumpUntil([&] { return !right.currentFrame.get(); }, patience));
}

// Over TCP (DISPLAY=host:N, ssh -X) the server still advertises MIT-SHM, but no descriptor can
// pass and AttachFd fails: the capture reads with GetImage instead and says so once.
TEST_F(X11CaptureTest, OverTcpWhereSharedMemoryCannotBeAttachedTheCaptureStillWorks) {
  using namespace std::chrono_literals;
  const std::string number = std::string(displayName).substr(1);
  const std::string remote = std::to_string(std::stoi(number) + 100);
  const auto log = std::filesystem::temp_directory_path() / ("orlet-proxy-" + remote + ".log");
  x11test::Process proxy({"python3", ORLET_SOURCE_DIR "/tests/linux/capture/tcp_x_proxy.py",
                          std::to_string(6000 + std::stoi(remote)), number},
                         {}, log.string());
  ASSERT_TRUE(x11test::eventually([&] { return proxy.output().find("listening") == 0; }, 10s));
  painter.paint({1920 + 40, 40, 64, 64}, 0x3060C0);
  std::fflush(stderr);
  const int savedStderr = dup(2);
  FILE* said = std::tmpfile();
  dup2(fileno(said), 2);
  bool bothCaptured = false;
  {
    linux_capture::X11CaptureService tcp(scheduler, "127.0.0.1:" + remote);
    VideoCaptureManager left(scheduler, tcp), right(scheduler, tcp);
    left.startCapture(primary);
    right.startCapture(secondary);
    bothCaptured = scheduler.pumpUntil(
        [&] {
          return left.currentFrame.get() && right.currentFrame.get() &&
                 rgb(right.currentFrame.get(), 50, 50) == 0x3060C0;
        },
        patience);
    if (bothCaptured) bothCaptured = sameAsScreen(left.currentFrame.get(), painter, primary);
    left.stopCapture();
    right.stopCapture();
    scheduler.pumpUntil([&] { return !left.currentFrame.get() && !right.currentFrame.get(); },
                        patience);
  }
  std::fflush(stderr);
  dup2(savedStderr, 2);
  close(savedStderr);
  std::rewind(said);
  std::string text;
  for (int c; (c = std::fgetc(said)) != EOF;) text += static_cast<char>(c);
  std::fclose(said);
  std::filesystem::remove(log);
  EXPECT_TRUE(bothCaptured) << text;
  const std::string notice = "MIT-SHM ne peut pas servir sur cette connexion";
  ASSERT_NE(text.find(notice), std::string::npos) << text;
  EXPECT_EQ(text.find(notice, text.find(notice) + 1), std::string::npos) << "said once: " << text;
}

TEST_F(X11CaptureTest, AnUnchangedScreenYieldsNoNewFrames) {
  VideoCaptureManager capture(scheduler, *service);
  int frames = 0;
  auto counting = capture.currentFrame.observe([&](const FrameRef& f) { frames += f ? 1 : 0; });
  capture.startCapture(secondary, 60);
  ASSERT_TRUE(scheduler.pumpUntil([&] { return frames == 1; }, patience));

  scheduler.pumpUntil([] { return false; }, Seconds{0.5});
  EXPECT_EQ(frames, 1);

  // It is asleep, not dead: a change still comes through.
  const xcb_window_t window = painter.paint({1920 + 5, 5, 20, 20}, 0x123456);
  EXPECT_TRUE(scheduler.pumpUntil([&] { return frames == 2; }, patience));

  // Drawing the same pixels again is read, and found to be no new picture.
  auto& counters = RenderCounters::process();
  const auto unchanged = counters.framesUnchanged.load();
  painter.fill(window, {0, 0, 20, 20}, 0x123456);
  EXPECT_TRUE(scheduler.pumpUntil([&] { return counters.framesUnchanged > unchanged; }, patience));
  scheduler.pumpUntil([] { return false; }, Seconds{0.2});
  EXPECT_EQ(frames, 2);
  capture.stopCapture();
}

TEST_F(X11CaptureTest, SwitchingADisplayOffEndsItsStreamAndTheNextRefreshDropsIt) {
  std::shared_ptr<CaptureStream> stream =
      service->makeStream(secondary, VideoCaptureManager::configurationFor(secondary, 30));
  std::optional<CaptureError> ended;
  int samples = 0;
  class Counter final : public CaptureStreamOutput {
   public:
    explicit Counter(int& n) : n_(n) {}
    void didOutputSampleBuffer(CaptureStream&, const SampleBuffer&, StreamOutputType) override {
      ++n_;
    }
    int& n_;
  };
  ASSERT_FALSE(
      stream->addStreamOutput(std::make_shared<Counter>(samples), StreamOutputType::screen));
  stream->setDidStopWithError([&](CaptureError error) { ended = error; });
  stream->startCapture([](std::optional<CaptureError> error) { ASSERT_FALSE(error); });
  ASSERT_TRUE(scheduler.pumpUntil([&] { return samples > 0; }, patience));

  ASSERT_EQ(shell("xrandr --output DUMMY1 --off"), 0);
  ASSERT_TRUE(scheduler.pumpUntil([&] { return ended.has_value(); }, patience));
  std::optional<CaptureError> stopError;
  stream->stopCapture([&](std::optional<CaptureError> error) { stopError = error; });
  ASSERT_TRUE(scheduler.pumpUntil([&] { return stopError.has_value(); }, patience));
  EXPECT_EQ(stopError->message, ended->message);

  displays.refresh();
  ASSERT_TRUE(scheduler.pumpUntil([&] { return !displays.isLoading.get(); }, patience));
  ASSERT_EQ(displays.displays->size(), 1u);
  EXPECT_EQ(displays.displays->at(0).displayID, primary.displayID);

  // Started while its display is still off (listed a moment before, unplugged again since), a
  // stream reports the loss as well, so that its owner looks for the display's return.
  auto late = service->makeStream(secondary, VideoCaptureManager::configurationFor(secondary, 30));
  std::optional<CaptureError> lateEnd;
  late->setDidStopWithError([&](CaptureError error) { lateEnd = error; });
  late->startCapture([](std::optional<CaptureError>) {});
  ASSERT_TRUE(scheduler.pumpUntil([&] { return lateEnd.has_value(); }, patience));

  ASSERT_EQ(shell("xrandr --output DUMMY1 --mode 2560x1440_60 --pos 1920x0"), 0);
}

// After the first picture, only what changed is read from the server: a small window appearing
// costs a read of about its own size, not of the display.
TEST_F(X11CaptureTest, AfterTheFirstPictureOnlyTheChangedRectanglesAreRead) {
  std::mutex mutex;
  std::vector<std::vector<PixelRect>> reads;
  linux_capture::GrabberEvents events;
  events.started = events.ended = [](std::optional<CaptureError>) {};
  events.frame = [](FrameRef) {};
  events.read = [&](const std::vector<PixelRect>& rects) {
    std::lock_guard lock(mutex);
    reads.push_back(rects);
  };
  const auto readsSoFar = [&] {
    std::lock_guard lock(mutex);
    return reads;
  };
  linux_capture::StopSignal stop;
  linux_capture::GrabberSettings settings;
  settings.displayName = displayName;
  settings.displayID = secondary.displayID;
  settings.stopFd = stop.fd();
  std::thread grabber([&] { linux_capture::runGrabber(settings, events); });
  ASSERT_TRUE(x11test::eventually([&] { return !readsSoFar().empty(); }));
  painter.paint({1920 + 300, 200, 40, 30}, 0x00FF00);
  ASSERT_TRUE(x11test::eventually([&] { return readsSoFar().size() >= 2; }));
  stop.raise();
  grabber.join();

  const auto all = readsSoFar();
  EXPECT_EQ(all.front(), (std::vector<PixelRect>{{0, 0, 2560, 1440}}));
  for (std::size_t i = 1; i < all.size(); ++i) {
    std::int64_t area = 0;
    for (const auto& r : all[i]) area += r.area();
    EXPECT_GT(area, 0);
    EXPECT_LE(area, 4 * 40 * 30) << "read " << i;
  }
  const PixelRect painted{300, 200, 40, 30};
  EXPECT_EQ(boundingBox(all[1]), painted);
}

// Memory is lent again, still attached, once nothing maps it any more (a frame still shown
// included), to a reader asking for the same size; unused for keepFor, it leaves the pool.
TEST_F(X11CaptureTest, SharedMemoryIsLentAgainUntilUnusedForAWhile) {
  using Pool = linux_capture::SharedMemoryPool;
  auto pool = Pool::make(scheduler, displayName);
  std::string error;
  auto first = pool->take(4096, error);
  ASSERT_TRUE(first) << error;
  const auto segment = first->segment();
  auto shown = first->mapping();
  first.reset();
  EXPECT_EQ(pool->idleCount(), 0u);
  shown.reset();
  EXPECT_EQ(pool->idleCount(), 1u);

  auto again = pool->take(4096, error);
  auto larger = pool->take(8192, error);
  ASSERT_TRUE(again && larger) << error;
  EXPECT_EQ(again->segment(), segment);
  EXPECT_NE(larger->segment(), segment);
  again.reset();
  larger.reset();
  pool->trim(Pool::Clock::now());
  EXPECT_EQ(pool->idleCount(), 2u);
  pool->trim(Pool::Clock::now() + Pool::keepFor);
  EXPECT_EQ(pool->idleCount(), 0u);
}

// Streams may outlive their service (a pending timer holds one): destroying the service still
// stops and joins every capture thread, so none reports to a main queue that is going away.
TEST_F(X11CaptureTest, DestroyingTheServiceJoinsTheThreadsOfStreamsThatLiveOn) {
  const auto threads = [] {
    const auto tasks = std::filesystem::directory_iterator("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
  };
  long idle = -1;  // once the list's query thread has ended
  x11test::eventually([&] { return std::exchange(idle, threads()) == threads(); });
  auto stream =
      service->makeStream(secondary, VideoCaptureManager::configurationFor(secondary, 30));
  bool started = false;
  stream->startCapture([&](std::optional<CaptureError> error) { started = !error; });
  ASSERT_TRUE(scheduler.pumpUntil([&] { return started; }, patience));
  EXPECT_GT(threads(), idle);

  service.reset();
  EXPECT_TRUE(x11test::eventually([&] { return threads() == idle; }, std::chrono::seconds(2)))
      << threads();
}

}  // namespace
}  // namespace orlet
