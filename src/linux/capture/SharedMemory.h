#pragma once

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

// Memory shared with the X server (MIT-SHM 1.2, passed as a memfd, so nothing is left behind
// in the SysV tables if we crash). The mapping lives as long as any owner of `mapping()`; the
// server's attachment ends with detach() or with the connection.
class SharedMemory {
 public:
  // Whether the server can attach our memory: MIT-SHM 1.2 or later, and a connection that can
  // pass it a descriptor (not TCP, as with DISPLAY=host:N or ssh -X), which one attachment of a
  // page proves. When not, `why` says so.
  static bool usable(const XcbConnection& connection, std::string& why);

  // A zeroed segment of `size` bytes attached to the server; null with `error` set otherwise.
  static std::unique_ptr<SharedMemory> create(const XcbConnection& connection, std::size_t size,
                                              std::string& error);
  // A segment attached elsewhere (by a pool), which stays attached when this handle goes.
  static std::unique_ptr<SharedMemory> borrowed(xcb_shm_seg_t segment,
                                                std::shared_ptr<void> mapping, std::size_t size) {
    return std::unique_ptr<SharedMemory>(
        new SharedMemory(nullptr, segment, std::move(mapping), size));
  }
  // Zeroed memory of `size` bytes attached on `connection`, mapped at `address`, which the
  // caller unmaps: its segment, or nullopt with `error` set (nothing left mapped).
  static std::optional<xcb_shm_seg_t> attachNew(const XcbConnection& connection, std::size_t size,
                                                void*& address, std::string& error);
  ~SharedMemory();
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  xcb_shm_seg_t segment() const { return segment_; }
  std::uint8_t* data() const { return static_cast<std::uint8_t*>(mapping_.get()); }
  std::size_t size() const { return size_; }
  // Keeps the bytes mapped for a frame that outlives the segment.
  const std::shared_ptr<void>& mapping() const { return mapping_; }

 private:
  SharedMemory(const XcbConnection* connection, xcb_shm_seg_t segment,
               std::shared_ptr<void> mapping, std::size_t size)
      : connection_(connection), segment_(segment), mapping_(std::move(mapping)), size_(size) {}
  const XcbConnection* connection_;  // where to detach; null when borrowed
  xcb_shm_seg_t segment_;
  std::shared_ptr<void> mapping_;
  std::size_t size_;
};

}  // namespace orlet::linux_capture
