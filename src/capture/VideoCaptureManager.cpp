#include "capture/VideoCaptureManager.h"

#include <cstdio>
#include <cstdlib>
#include <limits>

namespace orlet {

VideoCaptureManager::VideoCaptureManager(Scheduler& scheduler, CaptureService& service)
    : scheduler_(scheduler), service_(service) {}

StreamConfiguration VideoCaptureManager::configurationFor(const Display& display,
                                                          std::int64_t fps) {
  // A frame rate that does not fit the interval's 32-bit timescale is a caller's bug: stop here
  // rather than capture at a wrapped rate. Checked in every build, not only with asserts on.
  if (fps < std::numeric_limits<std::int32_t>::min() ||
      fps > std::numeric_limits<std::int32_t>::max()) {
    std::fprintf(stderr, "VideoCaptureManager: fps %lld does not fit 32 bits\n",
                 static_cast<long long>(fps));
    std::abort();
  }
  StreamConfiguration configuration;
  configuration.width = display.width;
  configuration.height = display.height;
  configuration.pixelFormat = pixelFormatBGRA;
  configuration.showsCursor = false;  // the pointer is not part of the picture
  configuration.minimumFrameInterval = MediaTime{1, static_cast<std::int32_t>(fps)};
  return configuration;
}

StreamConfiguration VideoCaptureManager::configurationFor(const Display& display, std::int64_t fps,
                                                          int width, int height) {
  StreamConfiguration configuration = configurationFor(display, fps);
  if (width > 0 && height > 0 && width <= display.width && height <= display.height) {
    configuration.width = width;
    configuration.height = height;
  }
  return configuration;
}

void VideoCaptureManager::setPictureSize(int width, int height) {
  if (width == pictureWidth_ && height == pictureHeight_) return;
  pictureWidth_ = width;
  pictureHeight_ = height;
  if (!stream_) return;
  // A refusal leaves the pictures at their size: the view still draws them, scaled.
  stream_->updateConfiguration(configurationFor(display_, fps_, width, height),
                               [](std::optional<CaptureError>) {});
}

void VideoCaptureManager::startCapture(const Display& display, std::int64_t fps) {
  if (stream_) return;
  const auto configuration = configurationFor(display, fps, pictureWidth_, pictureHeight_);
  display_ = display;
  fps_ = fps;
  output_ = std::make_shared<StreamOutput>(
      lifetime_.guard([this](const SampleBuffer& sample) { convert(sample); }));
  stream_ = service_.makeStream(display, configuration);
  stream_->setDidStopWithError(
      lifetime_.guard([this, ended = stream_.get()](CaptureError) { lose(ended); }));
  latest_ = nullptr;
  // Attaching and starting run one turn later, so a stop in this turn cancels them.
  scheduler_.async(lifetime_.guard(
      [this, stream = stream_, output = output_] { attachAndStart(stream, output); }));
}

// The stream and output are those of the start that scheduled this: an older stop completing in
// between clears `output_`, yet this stream must still start.
void VideoCaptureManager::attachAndStart(const std::shared_ptr<CaptureStream>& stream,
                                         const std::shared_ptr<StreamOutput>& output) {
  if (stream != stream_) return;  // a stop came first
  // Failures leave the view on its loading state; nothing to report.
  (void)stream->addStreamOutput(output, StreamOutputType::screen);
  stream->startCapture([](std::optional<CaptureError>) {});
}

void VideoCaptureManager::convert(const SampleBuffer& sample) {
  if (!sample.imageBuffer) return;
  scheduler_.async(lifetime_.guard([this, frame = sample.imageBuffer] {
    latest_ = frame;
    currentFrame.set(frame);
    setLost(false);
  }));
}

// The handler is the stream's own, so `ended` is alive whenever it runs; an older stream that
// ends after a newer one started changes nothing.
void VideoCaptureManager::lose(const CaptureStream* ended) {
  if (stream_.get() != ended) return;
  stream_ = nullptr;  // nothing left to stop; a new start may proceed
  setLost(true);
}

void VideoCaptureManager::setLost(bool lost) {
  if (streamLost.get() != lost) streamLost.set(lost);
}

void VideoCaptureManager::stopCapture() {
  if (!stream_) {
    if (streamLost.get()) clearAfterStop();
    return;
  }
  auto stream = std::move(stream_);
  stream_ = nullptr;
  stream->stopCapture(lifetime_.guard([this](std::optional<CaptureError>) { clearAfterStop(); }));
}

void VideoCaptureManager::clearAfterStop() {
  output_ = nullptr;
  currentFrame.set(nullptr);
  setLost(false);
  if (!stream_) {
    latest_ = nullptr;
    return;
  }
  // A capture started since: its pictures come only when its display changes, so its latest
  // one is shown again rather than none until the next change.
  scheduler_.async(lifetime_.guard([this, frame = latest_] {
    if (stream_ && frame && latest_ == frame) currentFrame.set(frame);
  }));
}

}  // namespace orlet
