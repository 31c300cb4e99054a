#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/PixelRect.h"
#include "linux/wayland/WaylandConnection.h"

struct zwlr_screencopy_manager_v1;
struct zwlr_screencopy_frame_v1;

namespace orlet::wayland {

// Copies of one output through the wlroots screencopy protocol, into shared memory of ours: the
// first copy at once, each next one only once the output changed, with the rectangles the
// compositor says changed. The connection should be the capture thread's own.
class WlrScreencopy {
 public:
  WlrScreencopy(WaylandConnection& connection, wl_output* output);
  WlrScreencopy(const WlrScreencopy&) = delete;
  WlrScreencopy& operator=(const WlrScreencopy&) = delete;
  ~WlrScreencopy();

  bool isAvailable() const { return manager_ != nullptr; }

  // The last copy: 32-bit BGRX rows, top row first.
  struct Copy {
    const std::uint8_t* pixels = nullptr;
    std::size_t stride = 0;
    int width = 0, height = 0;
    std::vector<PixelRect> changed;  // output pixels
  };

  // Waits for the next copy, dispatching the connection, until `stopFd` (if not -1) is
  // readable; nullopt, with `error` set unless stopped, when no copy can be had.
  std::optional<Copy> next(int stopFd, std::string& error);

  struct Pending;

 private:
  bool ensureBuffer(std::uint32_t format, int width, int height, int stride, std::string& error);
  void releaseBuffer();

  WaylandConnection& connection_;
  wl_output* output_;
  zwlr_screencopy_manager_v1* manager_;
  wl_shm* shm_ = nullptr;
  wl_buffer* buffer_ = nullptr;
  std::uint8_t* memory_ = nullptr;
  std::size_t size_ = 0;
  int width_ = 0, height_ = 0, stride_ = 0;
  std::uint32_t format_ = 0;
};

}  // namespace orlet::wayland
