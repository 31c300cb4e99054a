#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "capture/FramePool.h"
#include "capture/PictureReducer.h"

namespace orlet {

// Publishes a display whose whole picture the desktop hands over in one buffer (a compositor's
// copy of an output), reduced to the size it is shown at: only what changed is reduced down
// again, and only the output pixels it affects are reduced across. A change whose reduced pixels
// equal the current picture's publishes nothing. Used by one capture thread.
class BufferReducer {
 public:
  BufferReducer(int sourceWidth, int sourceHeight, int width, int height);

  enum class Result { ok, unchanged, busy };

  // The next picture from `pixels` (the whole display, 32-bit BGRX rows `stride` bytes apart),
  // of which `changed` (display coordinates) changed since the last call; the first call reduces
  // all of it whatever `changed` says.
  Result read(const std::uint8_t* pixels, std::size_t stride, std::vector<PixelRect> changed,
              FrameRef& frame);

 private:
  PictureReducer reducer_;
  ReducedDown down_;
  FramePool pool_;
  bool primed_ = false;
};

}  // namespace orlet
