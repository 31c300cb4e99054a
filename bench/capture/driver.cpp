// ORLET's capture path as the app runs it: the X11 engine, a VideoCaptureManager and a main loop
// that receives the published frames. Logs, for each published frame, the picture number the
// generator stamped into it and when it was published (CLOCK_MONOTONIC), until SIGTERM.
//
//   orlet_capture_driver DISPLAY X Y FPS LOGFILE    capture the display whose origin is X,Y
//   orlet_capture_driver --memcpy                   this machine's memcpy bandwidth
//   orlet_capture_driver --roundtrip DISPLAY        the X server's round-trip time
#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <xcb/xcb.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "LoopScheduler.h"
#include "capture/VideoCaptureManager.h"
#include "linux/capture/X11CaptureService.h"

namespace {

std::atomic<bool> stopRequested{false};

std::int64_t nowNs() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return std::int64_t(t.tv_sec) * 1000000000 + t.tv_nsec;
}

int measureMemcpy() {
  const std::size_t size = 64u << 20;
  std::vector<char> a(size, 1), b(size, 2);
  const auto start = nowNs();
  const int rounds = 20;
  for (int i = 0; i < rounds; ++i)
    std::memcpy(i % 2 ? a.data() : b.data(), i % 2 ? b.data() : a.data(), size);
  const double seconds = double(nowNs() - start) / 1e9;
  std::printf("%.2f\n", double(size) * rounds / seconds / 1e9);
  return a[size / 2] == b[size / 2] ? 0 : 0;
}

int measureRoundTrip(const char* display) {
  xcb_connection_t* c = xcb_connect(display, nullptr);
  if (xcb_connection_has_error(c)) return 1;
  const int rounds = 2000;
  const auto start = nowNs();
  for (int i = 0; i < rounds; ++i)
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
  std::printf("%.1f\n", double(nowNs() - start) / rounds / 1e3);
  xcb_disconnect(c);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--memcpy") return measureMemcpy();
  if (argc == 3 && std::string(argv[1]) == "--roundtrip") return measureRoundTrip(argv[2]);
  if (argc != 6) {
    std::fprintf(stderr, "usage: %s DISPLAY X Y FPS LOGFILE\n", argv[0]);
    return 2;
  }
  // SIGTERM ends the run; a thread waits for it so the main loop sleeps undisturbed.
  sigset_t terminate;
  sigemptyset(&terminate);
  sigaddset(&terminate, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &terminate, nullptr);
  const double x = std::atof(argv[2]);
  const double y = std::atof(argv[3]);
  orlet::test::LoopScheduler scheduler;
  orlet::linux_capture::X11CaptureService service(scheduler, argv[1]);

  std::optional<orlet::Display> target;
  bool listed = false;
  service.shareableContent([&](std::optional<orlet::ShareableContent> content, auto) {
    listed = true;
    if (!content) return;
    for (const auto& d : content->displays) {
      if (d.frame.x == x && d.frame.y == y) target = d;
    }
  });
  scheduler.pumpUntil([&] { return listed; }, orlet::Seconds{10});
  if (!target) {
    std::fprintf(stderr, "no display at %g,%g\n", x, y);
    return 1;
  }

  std::vector<std::pair<std::uint32_t, std::int64_t>> log;
  log.reserve(1 << 16);
  orlet::VideoCaptureManager capture(scheduler, service);
  auto subscription = capture.currentFrame.observe([&](const orlet::FrameRef& frame) {
    if (frame) log.emplace_back(frame->pixel(8, 8) & 0xFFFFFF, nowNs());
  });
  capture.startCapture(*target, std::atoll(argv[4]));
  std::thread waiter([&] {
    int signal = 0;
    sigwait(&terminate, &signal);
    scheduler.async([] { stopRequested = true; });
  });
  std::printf("ready\n");
  std::fflush(stdout);
  scheduler.pumpUntil([] { return stopRequested.load(); }, orlet::Seconds{1e6});
  waiter.join();
  capture.stopCapture();
  scheduler.pumpUntil([&] { return !capture.currentFrame.get(); }, orlet::Seconds{2});
  if (FILE* out = std::fopen(argv[5], "w")) {
    for (const auto& [n, t] : log) std::fprintf(out, "%u %lld\n", n, static_cast<long long>(t));
    std::fclose(out);
  }
  return 0;
}
