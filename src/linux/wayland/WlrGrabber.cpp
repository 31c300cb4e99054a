#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>

#include "capture/BufferReducer.h"
#include "linux/wayland/WlrCaptureService.h"
#include "linux/wayland/WlrScreencopy.h"

namespace orlet::wayland {
namespace {

using Clock = std::chrono::steady_clock;
using linux_capture::GrabberEvents;
using linux_capture::GrabberSettings;

// Waits until `until` or the stop signal; true when stopped.
bool stoppedBefore(int stopFd, Clock::time_point until) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
  pollfd fd{stopFd, POLLIN, 0};
  return poll(&fd, 1, int(std::max<std::int64_t>(left.count(), 0))) > 0;
}

// A new picture size asked for since the last look: the reducer is made anew.
bool resized(const GrabberSettings& settings, std::uint64_t& size) {
  if (settings.resizeFd < 0) return false;
  pollfd fd{settings.resizeFd, POLLIN, 0};
  if (poll(&fd, 1, 0) > 0) {
    std::uint64_t raised = 0;
    [[maybe_unused]] const auto taken = read(settings.resizeFd, &raised, sizeof raised);
  }
  const std::uint64_t now = settings.pictureSize ? settings.pictureSize->packed() : 0;
  return std::exchange(size, now) != now;
}

class Capture {
 public:
  Capture(const GrabberSettings& settings, WaylandConnection& connection, wl_output* output)
      : settings_(settings), copier_(connection, output) {}

  // Copies and publishes until stopped or broken; the reason it ended, nullopt when stopped.
  std::optional<CaptureError> run(const GrabberEvents& events, bool& announced) {
    const auto interval = std::chrono::duration_cast<Clock::duration>(settings_.minimumInterval);
    auto last = Clock::now() - interval;
    std::string error;
    while (!stoppedBefore(settings_.stopFd, last + interval)) {
      auto copy = copier_.next(settings_.stopFd, error);
      if (!copy) return error.empty() ? std::nullopt : std::optional(CaptureError{error});
      if (!std::exchange(announced, true)) events.started(std::nullopt);
      last = Clock::now();
      if (publish(*copy, events)) return std::nullopt;
    }
    return std::nullopt;
  }

 private:
  // True when stopped while every picture was still held.
  bool publish(const WlrScreencopy::Copy& copy, const GrabberEvents& events) {
    if (resized(settings_, size_) || !reducer_) {
      const auto& s = settings_.pictureSize;
      const int width = s && s->width() > 0 ? s->width() : copy.width;
      const int height = s && s->height() > 0 ? s->height() : copy.height;
      reducer_.emplace(copy.width, copy.height, width, height);
    }
    for (;;) {
      FrameRef frame;
      const auto result = reducer_->read(copy.pixels, copy.stride, copy.changed, frame);
      if (result == BufferReducer::Result::ok) events.frame(std::move(frame));
      if (result != BufferReducer::Result::busy) return false;
      // Every picture is still held: again once one is let go.
      if (stoppedBefore(settings_.stopFd, Clock::now() + std::chrono::milliseconds(5))) return true;
    }
  }

  const GrabberSettings& settings_;
  WlrScreencopy copier_;
  std::optional<BufferReducer> reducer_;
  std::uint64_t size_ = 0;
};

}  // namespace

void runWlrGrabber(const GrabberSettings& settings, const GrabberEvents& events) {
  std::string error;
  std::optional<CaptureError> end;
  bool announced = false;
  if (auto connection = WaylandConnection::connect(settings.displayName, error)) {
    const auto& outputs = connection->outputs();
    const auto output = std::ranges::find_if(outputs, [&](const auto& o) {
      return WlrCaptureService::idOf(o->name) == settings.displayID;
    });
    if (output == outputs.end()) {
      end = CaptureError{"l'écran n'est plus branché"};
    } else {
      Capture capture(settings, *connection, (*output)->output);
      end = capture.run(events, announced);
    }
  } else {
    end = CaptureError{error};
  }
  if (!announced) events.started(end ? end : CaptureError{"stopped before it started"});
  events.ended(end);
}

}  // namespace orlet::wayland
