#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "foundation/PixelRect.h"
#include "linux/capture/SharedMemory.h"
#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

// What is done with one rectangle's pixels once read: packed rows of four bytes a pixel, which
// may be changed in place.
using PixelsRead = std::function<void(const PixelRect& rect, std::uint8_t* pixels)>;

// Reads rectangles of the root window (relative to `area`'s origin, global coordinates) in one
// round trip: every request goes out before the first reply is awaited. With `scratch` (MIT-SHM),
// the rectangles are read one after another into it (they must fit) and handed over once all have
// arrived; without, by plain GetImage, each as its reply comes. False with `error` set when a
// read fails; the replies are all collected even then.
bool readBatch(const XcbConnection& connection, SharedMemory* scratch, const PixelRect& area,
               const std::vector<PixelRect>& rects, const PixelsRead& use, std::string& error);

}  // namespace orlet::linux_capture
