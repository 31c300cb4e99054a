#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/BufferReducer.h"
#include "linux/capture/SharedMemory.h"
#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

using ReadResult = BufferReducer::Result;

// Reads an area of the root window and publishes it reduced to the size it is shown at. Only
// the picture reduced down (see PictureReducer) is kept between frames, not the area's own
// pixels: the changed parts are read piece by piece through a bounded scratch buffer and reduced
// down straight from it, and only the output pixels they affect are reduced across again. A change
// whose reduced pixels equal the current picture's publishes nothing. Used by one capture thread.
class ReducingReader {
 public:
  // At most this many bytes of the area's pixels are read at once (the scratch buffer's size
  // with MIT-SHM): a full-screen change is read in a few round trips, never held whole.
  static constexpr std::size_t readBudget = std::size_t(4) << 20;

  // `scratch` (null without MIT-SHM) must outlive the reader. `tenBitChannels`: the root window
  // holds x2r10g10b10 pixels, narrowed to eight bits a channel before they are reduced.
  ReducingReader(const XcbConnection& connection, SharedMemory* scratch, const PixelRect& area,
                 int width, int height, bool tenBitChannels = false);

  // The next picture: the previous one with what `changed` (area coordinates) affects reduced
  // anew from fresh pixels; the frame's changes are in picture coordinates.
  ReadResult read(std::vector<PixelRect> changed, FrameRef& frame, std::string& error);

 private:
  std::vector<PixelRect> pieces(const std::vector<PixelRect>& areas) const;
  bool readAreas(const std::vector<PixelRect>& areas, std::string& error);
  void reduceDown(const PixelRect& piece, std::uint8_t* pixels);

  const XcbConnection& connection_;
  SharedMemory* scratch_;
  bool tenBitChannels_;
  PixelRect area_;
  BufferReducer reducer_;
};

}  // namespace orlet::linux_capture
