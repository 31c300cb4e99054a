#pragma once

#include <cstdint>
#include <memory>

#include "capture/StreamOutput.h"
#include "foundation/Lifetime.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "platform/CaptureService.h"

namespace orlet {

// Captures one display continuously and publishes its latest picture. Main thread only.
class VideoCaptureManager {
 public:
  VideoCaptureManager(Scheduler& scheduler, CaptureService& service);
  VideoCaptureManager(const VideoCaptureManager&) = delete;
  VideoCaptureManager& operator=(const VideoCaptureManager&) = delete;

  // The latest picture of the display; null before the first one and after a stop completes.
  Published<FrameRef> currentFrame;

  // Whether the stream ended by itself (its display went away). The last picture stays in
  // currentFrame until the next capture delivers one or a stop clears it.
  Published<bool> streamLost{false};

  // Starts capturing `display` at most `fps` times a second; returns at once. Does nothing while
  // a stream is held, even for another display. `fps` outside 32 bits stops the program.
  void startCapture(const Display& display, std::int64_t fps = 30);

  // Stops capturing; returns at once. When the stop completes, the output and currentFrame are
  // cleared, even if a new capture has started meanwhile (the new stream keeps its own output,
  // so its next frame fills currentFrame again).
  void stopCapture();

  // Whether a stream is held: from startCapture until stopCapture or the stream's own end.
  bool isCapturing() const { return stream_ != nullptr; }

  static StreamConfiguration configurationFor(const Display& display, std::int64_t fps);

 private:
  void attachAndStart();
  void convert(const SampleBuffer& sample);
  void lose(const CaptureStream* ended);
  void setLost(bool lost);

  Scheduler& scheduler_;
  CaptureService& service_;
  std::shared_ptr<CaptureStream> stream_;
  std::shared_ptr<StreamOutput> output_;
  Lifetime lifetime_;
};

}  // namespace orlet
