#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "capture/PixelRect.h"
#include "foundation/Scheduler.h"
#include "platform/CaptureService.h"

namespace orlet::linux_capture {

class SharedMemoryPool;

// What a capture thread reports, on that thread.
struct GrabberEvents {
  std::function<void(std::optional<CaptureError>)> started;  // once, first
  std::function<void(FrameRef)> frame;                       // each new picture
  // Optional, just before each picture: the rectangles of it read from the server (display
  // coordinates); the rest came unchanged from the previous picture.
  std::function<void(const std::vector<PixelRect>&)> read;
  std::function<void(std::optional<CaptureError>)> ended;  // once, last; nullopt: stopped
};

// The size pictures are wanted at, set on the main thread while the capture runs; zero: the
// display's own size.
class PictureSize {
 public:
  void set(int width, int height) {
    packed_.store(std::uint64_t(std::uint32_t(width)) << 32 | std::uint32_t(height));
  }
  int width() const { return int(packed_.load() >> 32); }
  int height() const { return int(packed_.load() & 0xFFFFFFFFu); }
  std::uint64_t packed() const { return packed_.load(); }

 private:
  std::atomic<std::uint64_t> packed_{0};
};

struct GrabberSettings {
  std::string displayName;  // the X display; empty: $DISPLAY
  DisplayID displayID = 0;  // the RandR output of the monitor to capture
  Seconds minimumInterval{1.0 / 60};
  int stopFd = -1;                                 // becomes readable when the capture must end
  std::shared_ptr<const PictureSize> pictureSize;  // null: the display's own size
  int resizeFd = -1;  // becomes readable when `pictureSize` changed; cleared by the thread
  std::shared_ptr<SharedMemoryPool> memory;  // null: memory attached on the thread's connection
};

// The body of a capture thread: captures the display until `stopFd` is readable, the display
// goes away or the X connection breaks. Blocks only in poll() and in replies to its own requests,
// on its own X connection.
void runGrabber(const GrabberSettings& settings, const GrabberEvents& events);

}  // namespace orlet::linux_capture
