#include "support/FakeCaptureService.h"

#include <algorithm>

namespace orlet::test {

Display makeDisplay(DisplayID id, int width, int height, double x, bool isMain) {
  return Display{id, width, height, Rect{x, 0, double(width), double(height)}, isMain};
}

void FakeCaptureService::shareableContent(
    std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)> completion) {
  std::optional<ShareableContent> content;
  if (unreadableDepth > 0) {
    content = ShareableContent{{}, unreadableDepth};
  } else if (!contentAbsent && !contentError) {
    content = ShareableContent{displays};
  }
  scheduler_.async([completion = std::move(completion), content, error = contentError] {
    completion(content, error);
  });
}

std::shared_ptr<CaptureStream> FakeCaptureService::makeStream(
    const Display& display, const StreamConfiguration& configuration) {
  auto stream = std::make_shared<FakeCaptureStream>(*this, display, configuration);
  streams.push_back(stream);
  return stream;
}

FrameRef FakeCaptureService::makeFrame(int width, int height) {
  auto frame = Frame::allocate(width, height);
  const std::uint32_t serial = nextSerial_++;
  for (int y = 0; y < height; ++y) {
    auto* row = reinterpret_cast<std::uint32_t*>(frame->mutableRow(y));
    std::fill(row, row + width, serial);
  }
  return frame;
}

FakeCaptureStream::FakeCaptureStream(FakeCaptureService& service, Display display,
                                     StreamConfiguration configuration)
    : service_(service), display_(display), configuration_(configuration) {}

std::optional<CaptureError> FakeCaptureStream::addStreamOutput(
    std::shared_ptr<CaptureStreamOutput> output, StreamOutputType type) {
  if (service_.failures[display_.displayID].addOutput) return CaptureError{"add output failed"};
  for (const auto& [existing, existingType] : outputs_) {
    if (existing == output && existingType == type) return CaptureError{"output already added"};
  }
  outputs_.emplace_back(std::move(output), type);
  return std::nullopt;
}

void FakeCaptureStream::startCapture(CaptureCompletion completion) {
  std::optional<CaptureError> error;
  if (service_.failures[display_.displayID].start) error = CaptureError{"start failed"};
  if (running_) error = CaptureError{"already running"};
  if (!error) {
    running_ = true;
    ++runs_;
  }
  service_.scheduler_.after(service_.startLatency,
                            [self = shared_from_this(), completion = std::move(completion), error] {
                              completion(error);
                              if (!error) self->scheduleScript();
                            });
}

void FakeCaptureStream::scheduleScript() {
  auto found = service_.samples.find(display_.displayID);
  const auto script =
      found != service_.samples.end() ? found->second : std::vector<FakeSample>{FakeSample{}};
  for (const auto& sample : script) {
    service_.scheduler_.after(sample.at, [self = shared_from_this(), sample, run = runs_] {
      if (!self->running_ || self->runs_ != run) return;
      FrameRef frame;
      if (sample.withImage) {
        frame = self->service_.makeFrame(self->configuration_.width, self->configuration_.height);
      }
      self->send(frame, sample.type);
    });
  }
}

void FakeCaptureStream::stopCapture(CaptureCompletion completion) {
  std::optional<CaptureError> error;
  if (!running_) error = CaptureError{"not running"};
  if (service_.failures[display_.displayID].stop) error = CaptureError{"stop failed"};
  running_ = false;
  service_.scheduler_.after(service_.stopLatency,
                            [completion = std::move(completion), error] { completion(error); });
}

void FakeCaptureStream::updateConfiguration(const StreamConfiguration& configuration,
                                            CaptureCompletion completion) {
  configuration_ = configuration;
  service_.scheduler_.async([completion = std::move(completion)] { completion(std::nullopt); });
}

void FakeCaptureStream::endWithError(CaptureError error) {
  if (!running_) return;
  running_ = false;
  service_.scheduler_.async([self = shared_from_this(), error] {
    if (self->didStopWithError_) self->didStopWithError_(error);
  });
}

FrameRef FakeCaptureStream::deliver(bool withImage, StreamOutputType type) {
  FrameRef frame;
  if (withImage) frame = service_.makeFrame(configuration_.width, configuration_.height);
  service_.scheduler_.async([self = shared_from_this(), frame, type] {
    if (self->running_) self->send(frame, type);
  });
  return frame;
}

void FakeCaptureStream::send(const FrameRef& frame, StreamOutputType type) {
  const SampleBuffer sample{frame};
  const auto outputs = outputs_;
  for (const auto& [output, outputType] : outputs) {
    if (outputType == type) output->didOutputSampleBuffer(*this, sample, type);
  }
}

}  // namespace orlet::test
