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
  // cleared, even if a new capture has started meanwhile: the new stream keeps its own output,
  // and its latest picture fills currentFrame again one turn later, so a display that stays
  // still is not left without a picture.
  void stopCapture();

  // Asks for pictures of `width` × `height` pixels, the size they are shown at: the capture then
  // reduces each change once, off the main thread, and the view draws the pictures as they come.
  // Zero, or a size not smaller than the display: the display's own size. Applies to the stream
  // held (without restarting it) and to the next ones.
  void setPictureSize(int width, int height);

  // Whether a stream is held: from startCapture until stopCapture or the stream's own end.
  bool isCapturing() const { return stream_ != nullptr; }

  static StreamConfiguration configurationFor(const Display& display, std::int64_t fps);
  // The same, delivering pictures of `width` × `height` when smaller than the display.
  static StreamConfiguration configurationFor(const Display& display, std::int64_t fps, int width,
                                              int height);

 private:
  void attachAndStart(const std::shared_ptr<CaptureStream>& stream,
                      const std::shared_ptr<StreamOutput>& output);
  void clearAfterStop();
  void convert(const SampleBuffer& sample);
  void lose(const CaptureStream* ended);
  void setLost(bool lost);

  Scheduler& scheduler_;
  CaptureService& service_;
  std::shared_ptr<CaptureStream> stream_;
  std::shared_ptr<StreamOutput> output_;
  FrameRef latest_;  // the newest picture of the stream held, whether or not it is shown
  Display display_;  // the display of the stream held
  std::int64_t fps_ = 30;
  int pictureWidth_ = 0;
  int pictureHeight_ = 0;
  Lifetime lifetime_;
};

}  // namespace orlet
