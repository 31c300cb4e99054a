#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "capture/FramePool.h"
#include "capture/PixelRect.h"
#include "linux/capture/ReducingReader.h"
#include "linux/capture/SharedMemory.h"
#include "linux/capture/SharedMemoryPool.h"
#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

// Reads an area of the root window into frames, only the parts that changed: with MIT-SHM when
// the server offers it, else with plain GetImage. Plain root reads never contain the pointer
// (the server removes a software cursor before reading). Frames hold 8-bit BGRX whatever the
// root window's depth (24, 32, or 30 with ten bits a channel), at the area's own size or reduced
// to a smaller one (see ReducingReader). Used by one capture thread.
class PixelReader {
 public:
  using Result = ReadResult;

  // Shared memory comes from `memory` when given, and is attached on `connection` otherwise.
  PixelReader(const XcbConnection& connection, bool useSharedMemory,
              std::shared_ptr<SharedMemoryPool> memory = nullptr);
  ~PixelReader();

  // Reads `area` (global coordinates) from now on, in pictures of `width` × `height` (the
  // area's own size when not smaller); the next read reads all of it.
  bool configure(const PixelRect& area, int width, int height, std::string& error);
  const PixelRect& area() const { return area_; }
  bool usesSharedMemory() const { return useShm_; }

  // The next picture: the previous one with `changed` (area coordinates) read anew. busy when
  // every buffer is still held by readers (nothing was read); unchanged when the pixels read equal
  // the previous picture's (no new picture); failed with `error` set.
  Result read(std::vector<PixelRect> changed, FrameRef& frame, std::string& error);

 private:
  std::shared_ptr<Frame> allocate(int width, int height);
  std::unique_ptr<SharedMemory> sharedMemory(std::size_t size, std::string& error);
  bool readShm(Frame& frame, const std::vector<PixelRect>& changed, std::string& error);
  bool readRects(Frame& frame, const std::vector<PixelRect>& changed, std::string& error);
  bool readBand(Frame& frame, const PixelRect& band, std::string& error);
  void copyIn(Frame& frame, const PixelRect& rect, const std::uint8_t* source) const;

  const XcbConnection& connection_;
  bool useShm_;
  std::shared_ptr<SharedMemoryPool> memoryPool_;
  // A 30-bit root window (x2r10g10b10): read, then narrowed to eight bits a channel.
  bool tenBitChannels_;
  PixelRect area_;
  std::unique_ptr<FramePool> pool_;
  std::unique_ptr<ReducingReader> reducing_;
  std::unique_ptr<SharedMemory> scratch_;
  std::map<const std::uint8_t*, std::unique_ptr<SharedMemory>> frameMemory_;
};

}  // namespace orlet::linux_capture
