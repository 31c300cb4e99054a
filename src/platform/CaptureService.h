#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Geometry.h"
#include "foundation/Scheduler.h"
#include "platform/CaptureFrame.h"

namespace orlet {

// Stable 32-bit identity of a display (on X11 the RandR output XID of the monitor).
using DisplayID = std::uint32_t;

// A display that can be captured.
struct Display {
  DisplayID displayID = 0;
  int width = 0;        // pixels; the capture size
  int height = 0;       // pixels
  Rect frame;           // global coordinates
  bool isMain = false;  // the primary display, else the one at the desktop origin
  friend bool operator==(const Display&, const Display&) = default;
};

// What went wrong in a capture request; errors are reported, never thrown.
struct CaptureError {
  std::string message;
};
using CaptureCompletion = std::function<void(std::optional<CaptureError>)>;

// The displays the capture service offers, in its own order. Where the screen's pixels cannot
// be read at all (a depth or layout capture does not know), none is offered and
// `unreadableDepth` is the screen's depth (0 otherwise).
struct ShareableContent {
  std::vector<Display> displays;
  int unreadableDepth = 0;
};

// A rational time value / timescale seconds; invalid (timescale <= 0) means "not set".
struct MediaTime {
  std::int64_t value = 0;
  std::int32_t timescale = 0;
  bool isValid() const { return timescale > 0; }
  Seconds seconds() const { return Seconds{isValid() ? double(value) / timescale : 0.0}; }
  friend bool operator==(const MediaTime&, const MediaTime&) = default;
};

// Four-character code of 32-bit BGRA pixels, the only format produced.
inline constexpr std::uint32_t pixelFormatBGRA = 0x42475241;  // 'BGRA'

struct StreamConfiguration {
  // The size of the pictures delivered: the display's own size, or smaller, in which case the
  // display is reduced with a filter sized to the reduction (never enlarged).
  int width = 0;
  int height = 0;
  std::uint32_t pixelFormat = pixelFormatBGRA;
  // Frames come at most this often; not set: at most 60 a second.
  MediaTime minimumFrameInterval;
  bool showsCursor = true;  // the pointer is never painted into frames on X11; kept for callers
  friend bool operator==(const StreamConfiguration&, const StreamConfiguration&) = default;
};

enum class StreamOutputType { screen, audio, microphone };

// One delivery of a stream. A screen sample without a picture reports that nothing changed.
struct SampleBuffer {
  FrameRef imageBuffer;  // null when the sample carries no picture
};

class CaptureStream;

// Receives a stream's samples.
class CaptureStreamOutput {
 public:
  virtual ~CaptureStreamOutput() = default;
  // Called on the main thread for each sample of a type the output was added for.
  virtual void didOutputSampleBuffer(CaptureStream& stream, const SampleBuffer& sample,
                                     StreamOutputType type) = 0;
};

// A capture of one display. Created stopped; every member is called on the main thread, and
// every completion and sample arrives there, through the Scheduler, never inside the call.
class CaptureStream {
 public:
  virtual ~CaptureStream() = default;

  // Sends samples of `type` to `output`, which the stream keeps alive; an error when it cannot
  // (a type the platform does not capture, or the same output added twice for one type).
  virtual std::optional<CaptureError> addStreamOutput(std::shared_ptr<CaptureStreamOutput> output,
                                                      StreamOutputType type) = 0;

  // Starts delivering samples; `completion` gets the error when the capture cannot start, and
  // runs before the first sample arrives.
  virtual void startCapture(CaptureCompletion completion) = 0;

  // Applies `configuration` to the stream, running or not: a running capture delivers its next
  // pictures at the new size. `completion` gets the error when it cannot.
  virtual void updateConfiguration(const StreamConfiguration& configuration,
                                   CaptureCompletion completion) = 0;

  // Calls `handler` when a running capture ends by itself (its display went away, the server
  // broke); never after a stopCapture.
  virtual void setDidStopWithError(std::function<void(CaptureError)> handler) = 0;

  // Stops delivering samples at once; `completion` runs when the capture has ended, with an
  // error when the stream was not running (never started, already stopped, or ended by itself
  // because its display went away).
  virtual void stopCapture(CaptureCompletion completion) = 0;
};

// The platform's screen capture.
class CaptureService {
 public:
  virtual ~CaptureService() = default;

  // Lists the displays that can be captured now; `completion` gets the content (possibly
  // absent) or the error. Never blocks the caller.
  virtual void shareableContent(
      std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)>
          completion) = 0;

  // A new, stopped stream of the whole of `display`; does no I/O.
  virtual std::shared_ptr<CaptureStream> makeStream(const Display& display,
                                                    const StreamConfiguration& configuration) = 0;
};

}  // namespace orlet
