#include <gtest/gtest.h>
#include <poll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "../capture/LoopScheduler.h"
#include "Session.h"
#include "WaylandSession.h"
#include "capture/BufferReducer.h"
#include "linux/wayland/WaylandConnection.h"
#include "linux/wayland/WlrCaptureService.h"
#include "linux/wayland/WlrScreencopy.h"
#include "linux/wayland/WlrSyntheticInput.h"
#include "linux/wayland/WlrWorkspace.h"

namespace orlet::x11test {
namespace {

namespace fs = std::filesystem;
using wayland::WaylandConnection;

// The adapters of a wlroots desktop against headless sway, beside two stand-in applications:
// "darktable" (with darktable's own launcher entry) and one the desktop knows by its app_id
// alone.
class WlrootsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(session_.display().empty()) << "sway did not start";
    data_ = fs::temp_directory_path() / ("orlet-wayland-data-" + std::to_string(getpid()));
    fs::create_directories(data_ / "applications");
    fs::copy_file(fs::path(ORLET_STANDIN_ENTRIES) / "org.darktable.darktable.desktop",
                  data_ / "applications" / "org.darktable.darktable.desktop",
                  fs::copy_options::overwrite_existing);
    editor_ = startStandIn("darktable", "300,200", "4a6078");
    other_ = startStandIn("otherapp", "2300,300", "8a4a30");
    std::string error;
    connection_ = WaylandConnection::connect(session_.display(), error);
    ASSERT_TRUE(connection_) << error;
  }
  void TearDown() override {
    connection_.reset();
    editor_.reset();
    other_.reset();
    fs::remove_all(data_);
  }

  // Shown at `at` ("x,y"), 800 x 600, once sway has placed it.
  std::unique_ptr<Process> startStandIn(const std::string& appId, const std::string& at,
                                        const std::string& color) {
    auto process = std::make_unique<Process>(
        std::vector<std::string>{ORLET_WAYLAND_STANDIN_BINARY, "--app-id", appId, "--title", appId,
                                 "--size", "800x600", "--color", color},
        std::map<std::string, std::string>{{"WAYLAND_DISPLAY", session_.display()}},
        (data_ / (appId + ".log")).string());
    EXPECT_TRUE(eventually([&] { return process->output().find("window") != std::string::npos; }));
    auto x = at.substr(0, at.find(',')), y = at.substr(at.find(',') + 1);
    session_.swaymsg("'[app_id=\"" + appId + "\"] move absolute position " + x + " " + y + "'");
    EXPECT_TRUE(eventually([&] {
      for (const auto& w : session_.windows()) {
        if (w.appId == appId) return w.rect.x == std::stoi(x) && w.rect.y == std::stoi(y);
      }
      return false;
    }));
    return process;
  }

  // Runs the compositor's events and the scheduler's work until `done` holds.
  bool pumpUntil(const std::function<bool()>& done, Seconds timeout = Seconds{5}) {
    const auto limit = test::LoopScheduler::Clock::now() +
                       std::chrono::duration_cast<test::LoopScheduler::Clock::duration>(timeout);
    while (!done()) {
      if (test::LoopScheduler::Clock::now() > limit) return false;
      connection_->flush();
      pollfd fd{connection_->fd(), POLLIN, 0};
      if (poll(&fd, 1, 5) > 0 && !connection_->dispatch()) return false;
      scheduler_.pumpUntil([] { return false; }, Seconds{0.001});
    }
    return true;
  }

  bool focused(const std::string& appId) {
    for (const auto& w : session_.windows()) {
      if (w.appId == appId) return w.focused;
    }
    return false;
  }

  SwaySession session_;
  fs::path data_;
  test::LoopScheduler scheduler_;
  std::unique_ptr<Process> editor_, other_;
  std::unique_ptr<WaylandConnection> connection_;
};

// The application in front is the activated window's, named by its launcher entry or, without
// one, by its app_id; a change is told once; activating hands the front to an application.
TEST_F(WlrootsTest, TheFrontApplicationFollowsTheCompositorAndCanBeHandedBack) {
  wayland::WlrWorkspace workspace(*connection_, scheduler_, x11::DesktopEntries({data_}, "C"),
                                  "orlet");
  ASSERT_TRUE(workspace.isAvailable());
  int changes = 0;
  const auto subscription = workspace.observeDidActivateApplication([&] { ++changes; });
  const auto frontName = [&] {
    const auto front = workspace.frontmostApplication();
    return front ? front->localizedName.value_or("") : std::string("-");
  };

  session_.swaymsg("'[app_id=\"darktable\"] focus'");
  EXPECT_TRUE(pumpUntil([&] { return frontName() == "Darktable"; })) << frontName();
  session_.swaymsg("'[app_id=\"otherapp\"] focus'");
  EXPECT_TRUE(pumpUntil([&] { return frontName() == "otherapp"; })) << frontName();
  EXPECT_TRUE(pumpUntil([&] { return changes == 2; })) << changes;

  std::vector<std::string> names;
  std::optional<RunningApplication> darktable;
  for (const auto& app : workspace.runningApplications()) {
    names.push_back(app.localizedName.value_or(""));
    if (app.bundleIdentifier == "darktable") darktable = app;
  }
  std::ranges::sort(names);
  EXPECT_EQ(names, (std::vector<std::string>{"Darktable", "otherapp"}));

  ASSERT_TRUE(darktable);
  workspace.activate(*darktable);
  EXPECT_TRUE(pumpUntil([&] { return frontName() == "Darktable" && focused("darktable"); }));
  EXPECT_EQ(changes, 3);
}

// A click lands on the window under the spot, at the spot, on either output; the first motion
// also waits for the seat, which has no pointer until the virtual one exists.
TEST_F(WlrootsTest, ClicksLandAtTheSpotOnEveryOutput) {
  std::ostringstream diagnostics;
  wayland::WlrSyntheticInput input(*connection_, diagnostics);
  const auto layout = connection_->layout();
  EXPECT_EQ(layout, (Rect{0, 0, 4480, 1440}));
  const std::pair<Point, std::string> cases[] = {
      {{500, 350}, "click 200 150\nrelease 200 150\n"},
      {{2310, 899}, "click 10 599\nrelease 10 599\n"},
  };
  for (const auto& [at, said] : cases) {
    auto& log = at.x < 1920 ? *editor_ : *other_;
    EXPECT_TRUE(pumpUntil([&] {
      input.warpPointer(at, std::nullopt);
      return log.output().find("enter") != std::string::npos;
    }));
    input.leftButtonDown(at);
    input.leftButtonUp(at);
    EXPECT_TRUE(pumpUntil([&] { return log.output().find(said) != std::string::npos; }))
        << log.output();
  }
  EXPECT_EQ(diagnostics.str(), "");
}

// An output is copied whole first, then only once something changed, with what changed; the
// copies reduce to a picture that shows each window where it stands.
TEST_F(WlrootsTest, AnOutputIsCopiedWithWhatChanged) {
  const auto& outputs = connection_->outputs();
  const auto second =
      std::ranges::find(outputs, std::string("HEADLESS-2"), [](const auto& o) { return o->name; });
  ASSERT_NE(second, outputs.end());
  wayland::WlrScreencopy copier(*connection_, (*second)->output);
  BufferReducer reducer(2560, 1440, 900, 506);
  FrameRef frame;
  // The picture's colour where the centre of an 800 x 600 window at (x, y) of the output lies.
  const auto colourAt = [&](int x, int y) {
    const auto* p = frame->row((y + 300) * 506 / 1440) + (x + 400) * 900 / 2560 * 4;
    return std::uint32_t(p[2]) << 16 | std::uint32_t(p[1]) << 8 | p[0];
  };
  // Nothing waits for ever: the copies are abandoned after five seconds.
  const int deadline = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
  const itimerspec fiveSeconds{{0, 0}, {5, 0}};
  timerfd_settime(deadline, 0, &fiveSeconds, nullptr);
  std::string error;
  auto copy = copier.next(deadline, error);
  ASSERT_TRUE(copy) << error;
  EXPECT_EQ(copy->changed, (std::vector<PixelRect>{{0, 0, 2560, 1440}}));
  ASSERT_EQ(reducer.read(copy->pixels, copy->stride, copy->changed, frame),
            BufferReducer::Result::ok);
  EXPECT_EQ(colourAt(380, 300), 0x8a4a30u);

  session_.swaymsg("'[app_id=\"otherapp\"] move absolute position 3400 600'");
  copy = copier.next(deadline, error);
  ASSERT_TRUE(copy) << error;
  std::int64_t changed = 0;
  for (const auto& r : copy->changed) changed += r.area();
  EXPECT_LT(changed, 2560 * 1440);
  ASSERT_EQ(reducer.read(copy->pixels, copy->stride, copy->changed, frame),
            BufferReducer::Result::ok);
  EXPECT_NE(colourAt(380, 300), 0x8a4a30u);
  EXPECT_EQ(colourAt(1480, 600), 0x8a4a30u);
  close(deadline);
}

// Keeps the latest picture a stream delivered.
struct LatestPicture final : CaptureStreamOutput {
  void didOutputSampleBuffer(CaptureStream&, const SampleBuffer& sample,
                             StreamOutputType) override {
    if (sample.imageBuffer) latest = sample.imageBuffer;
  }
  // The colour at the centre of an 800 x 600 window at (x, y) of a 2560 x 1440 output, in a
  // 900 x 506 picture of it.
  std::uint32_t colourAt(int x, int y) const {
    const auto* p = latest->row((y + 300) * 506 / 1440) + (x + 400) * 900 / 2560 * 4;
    return std::uint32_t(p[2]) << 16 | std::uint32_t(p[1]) << 8 | p[0];
  }
  FrameRef latest;
};

// The outputs are listed as the compositor lays them out, the one at the origin first among
// equals; a stream of one delivers its picture at the size asked, and again once it changed.
TEST_F(WlrootsTest, TheOutputsAreListedAndStreamedLive) {
  wayland::WlrCaptureService service(scheduler_, *connection_, session_.display());
  std::optional<ShareableContent> content;
  service.shareableContent([&](auto listed, auto) { content = listed; });
  ASSERT_TRUE(pumpUntil([&] { return content.has_value(); }));
  ASSERT_EQ(content->displays.size(), 2u);
  const auto& second = content->displays[1];
  EXPECT_TRUE(content->displays[0].isMain);
  EXPECT_EQ(second.frame, (Rect{1920, 0, 2560, 1440}));
  EXPECT_EQ(second.displayID, wayland::WlrCaptureService::idOf("HEADLESS-2"));

  StreamConfiguration size;
  size.width = 900;
  size.height = 506;
  auto stream = service.makeStream(second, size);
  auto picture = std::make_shared<LatestPicture>();
  ASSERT_FALSE(stream->addStreamOutput(picture, StreamOutputType::screen));
  std::optional<std::string> started;
  stream->startCapture([&](auto error) { started = error ? error->message : ""; });
  EXPECT_TRUE(pumpUntil([&] { return picture->latest != nullptr; }));
  ASSERT_EQ(started, "");
  EXPECT_EQ(picture->latest->width(), 900);
  EXPECT_EQ(picture->colourAt(380, 300), 0x8a4a30u);

  session_.swaymsg("'[app_id=\"otherapp\"] move absolute position 3400 600'");
  EXPECT_TRUE(pumpUntil([&] { return picture->colourAt(1480, 600) == 0x8a4a30u; }));
  bool stopped = false;
  stream->stopCapture([&](auto) { stopped = true; });
  EXPECT_TRUE(pumpUntil([&] { return stopped; }));
}

}  // namespace
}  // namespace orlet::x11test
