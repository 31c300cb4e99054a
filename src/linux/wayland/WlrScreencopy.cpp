#include "linux/wayland/WlrScreencopy.h"

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <functional>

#include "wlr-screencopy-unstable-v1-client.h"

namespace orlet::wayland {

// What the compositor says of one copy, as it says it.
struct WlrScreencopy::Pending {
  std::uint32_t version = 1;
  std::optional<std::uint32_t> format;
  int width = 0, height = 0, stride = 0;
  bool described = false;  // every buffer kind told
  bool inverted = false;
  bool ready = false, failed = false;
  std::vector<PixelRect> damage;
};

namespace {

using Pending = WlrScreencopy::Pending;

Pending& of(void* data) {
  return *static_cast<Pending*>(data);
}

// The layouts whose bytes are B, G, R, then padding or alpha: what the reduction reads.
bool isBgrx(std::uint32_t format) {
  return format == WL_SHM_FORMAT_XRGB8888 || format == WL_SHM_FORMAT_ARGB8888;
}

void buffer(void* data, zwlr_screencopy_frame_v1*, std::uint32_t format, std::uint32_t width,
            std::uint32_t height, std::uint32_t stride) {
  auto& p = of(data);
  if (p.format && isBgrx(*p.format)) return;  // the first readable layout offered stays
  p.format = format;
  p.width = int(width);
  p.height = int(height);
  p.stride = int(stride);
  if (p.version < 3) p.described = true;
}
void flags(void* data, zwlr_screencopy_frame_v1*, std::uint32_t flags) {
  of(data).inverted = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0;
}
void ready(void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {
  of(data).ready = true;
}
void failed(void* data, zwlr_screencopy_frame_v1*) {
  of(data).failed = true;
}
void damage(void* data, zwlr_screencopy_frame_v1*, std::uint32_t x, std::uint32_t y,
            std::uint32_t width, std::uint32_t height) {
  of(data).damage.push_back({int(x), int(y), int(width), int(height)});
}
void dmabuf(void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {}
void bufferDone(void* data, zwlr_screencopy_frame_v1*) {
  of(data).described = true;
}

const zwlr_screencopy_frame_v1_listener frameListener{buffer, flags,  ready,     failed,
                                                      damage, dmabuf, bufferDone};

// Runs the connection until `done` holds; false when `stopFd` became readable or the connection
// broke.
bool waitFor(WaylandConnection& connection, int stopFd, const std::function<bool()>& done) {
  while (!done()) {
    connection.flush();
    pollfd fds[2] = {{connection.fd(), POLLIN, 0}, {stopFd, POLLIN, 0}};
    if (poll(fds, stopFd >= 0 ? 2 : 1, -1) < 0) continue;
    if (stopFd >= 0 && (fds[1].revents & POLLIN)) return false;
    if ((fds[0].revents & (POLLIN | POLLERR | POLLHUP)) && !connection.dispatch()) return false;
  }
  return true;
}

}  // namespace

WlrScreencopy::WlrScreencopy(WaylandConnection& connection, wl_output* output)
    : connection_(connection),
      output_(output),
      manager_(static_cast<zwlr_screencopy_manager_v1*>(
          connection.bind(zwlr_screencopy_manager_v1_interface, 3))),
      shm_(static_cast<wl_shm*>(connection.bind(wl_shm_interface, 1))) {}

WlrScreencopy::~WlrScreencopy() {
  releaseBuffer();
  if (shm_) wl_shm_destroy(shm_);
  if (manager_) zwlr_screencopy_manager_v1_destroy(manager_);
  connection_.flush();
}

std::optional<WlrScreencopy::Copy> WlrScreencopy::next(int stopFd, std::string& error) {
  if (!manager_ || !shm_) {
    error = "le compositeur ne permet pas de copier ses écrans";
    return std::nullopt;
  }
  Pending pending;
  pending.version = zwlr_screencopy_manager_v1_get_version(manager_);
  auto* frame = zwlr_screencopy_manager_v1_capture_output(manager_, 1, output_);
  zwlr_screencopy_frame_v1_add_listener(frame, &frameListener, &pending);
  std::optional<Copy> copy;
  if (waitFor(connection_, stopFd, [&] { return pending.described || pending.failed; }) &&
      !pending.failed) {
    if (!pending.format || !isBgrx(*pending.format)) {
      error = "le compositeur ne livre pas ses écrans en 32 bits BGRX";
    } else if (ensureBuffer(*pending.format, pending.width, pending.height, pending.stride,
                            error)) {
      // Before version 2 every copy is a whole one, told as such.
      if (pending.version < 2) {
        zwlr_screencopy_frame_v1_copy(frame, buffer_);
      } else {
        zwlr_screencopy_frame_v1_copy_with_damage(frame, buffer_);
      }
      if (waitFor(connection_, stopFd, [&] { return pending.ready || pending.failed; }) &&
          pending.ready) {
        copy = Copy{memory_, std::size_t(stride_), width_, height_, std::move(pending.damage)};
        if (copy->changed.empty()) copy->changed = {{0, 0, width_, height_}};
      } else if (pending.failed) {
        error = "le compositeur n'a pas pu copier l'écran";
      }
    }
  } else if (pending.failed) {
    error = "le compositeur n'a pas pu copier l'écran";
  }
  zwlr_screencopy_frame_v1_destroy(frame);
  if (copy && pending.inverted) {
    error = "le compositeur livre l'écran la tête en bas";
    return std::nullopt;
  }
  return copy;
}

// One buffer for every copy: the compositor writes only what changed into it.
bool WlrScreencopy::ensureBuffer(std::uint32_t format, int width, int height, int stride,
                                 std::string& error) {
  if (buffer_ && format == format_ && width == width_ && height == height_ && stride == stride_) {
    return true;
  }
  releaseBuffer();
  const std::size_t size = std::size_t(stride) * std::size_t(height);
  const int fd = memfd_create("orlet-screencopy", MFD_CLOEXEC);
  if (fd < 0 || ftruncate(fd, off_t(size)) != 0) {
    if (fd >= 0) close(fd);
    error = "pas de mémoire partagée pour la copie de l'écran";
    return false;
  }
  void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  if (memory == MAP_FAILED) {
    close(fd);
    error = "pas de mémoire partagée pour la copie de l'écran";
    return false;
  }
  auto* pool = wl_shm_create_pool(shm_, fd, int(size));
  buffer_ = wl_shm_pool_create_buffer(pool, 0, width, height, stride, format);
  wl_shm_pool_destroy(pool);
  close(fd);
  memory_ = static_cast<std::uint8_t*>(memory);
  size_ = size;
  format_ = format;
  width_ = width;
  height_ = height;
  stride_ = stride;
  return true;
}

void WlrScreencopy::releaseBuffer() {
  if (buffer_) wl_buffer_destroy(buffer_);
  if (memory_) munmap(memory_, size_);
  buffer_ = nullptr;
  memory_ = nullptr;
  size_ = 0;
}

}  // namespace orlet::wayland
