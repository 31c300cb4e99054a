#include "linux/capture/ThreadedCaptureStream.h"

#include <mutex>

#include "linux/capture/Grabber.h"

namespace orlet::linux_capture {

struct ThreadedCaptureStream::Run {
  std::shared_ptr<StopSignal> stop = std::make_shared<StopSignal>();
  // The picture size, and the signal that wakes the thread to apply a new one.
  std::shared_ptr<PictureSize> size = std::make_shared<PictureSize>();
  std::shared_ptr<StopSignal> resized = std::make_shared<StopSignal>();
  // Latest frame on its way to the main thread: a slow main thread gets the newest picture,
  // not a queue of old ones.
  std::mutex mutex;
  FrameRef latest;
  // Main thread only.
  CaptureCompletion startCompletion;
  CaptureCompletion stopCompletion;
  bool startFailed = false;
};

ThreadedCaptureStream::ThreadedCaptureStream(Scheduler& scheduler,
                                             std::shared_ptr<WorkerThreads> threads,
                                             CaptureThreadBody body,
                                             std::shared_ptr<SharedMemoryPool> memory,
                                             std::string displayName, Display display,
                                             StreamConfiguration configuration)
    : scheduler_(scheduler),
      threads_(std::move(threads)),
      body_(std::move(body)),
      memory_(std::move(memory)),
      displayName_(std::move(displayName)),
      display_(display),
      configuration_(configuration) {}

ThreadedCaptureStream::~ThreadedCaptureStream() {
  if (run_) run_->stop->raise();
}

std::optional<CaptureError> ThreadedCaptureStream::addStreamOutput(
    std::shared_ptr<CaptureStreamOutput> output, StreamOutputType type) {
  if (type != StreamOutputType::screen) return CaptureError{"the capture has no audio"};
  for (const auto& [existing, existingType] : outputs_) {
    if (existing == output && existingType == type) return CaptureError{"output already added"};
  }
  outputs_.emplace_back(std::move(output), type);
  return std::nullopt;
}

void ThreadedCaptureStream::fail(CaptureCompletion completion, std::string message) {
  scheduler_.async([completion = std::move(completion), message = std::move(message)] {
    completion(CaptureError{message});
  });
}

void ThreadedCaptureStream::startCapture(CaptureCompletion completion) {
  if (run_) return fail(std::move(completion), "the stream is already running");
  if (configuration_.pixelFormat != pixelFormatBGRA) {
    return fail(std::move(completion), "only BGRA frames can be captured");
  }
  auto run = std::make_shared<Run>();
  run->startCompletion = std::move(completion);
  run_ = run;
  endedAlone_.reset();

  GrabberSettings settings;
  settings.displayName = displayName_;
  settings.displayID = display_.displayID;
  if (configuration_.minimumFrameInterval.isValid()) {
    settings.minimumInterval = configuration_.minimumFrameInterval.seconds();
  }
  settings.stopFd = run->stop->fd();
  run->size->set(configuration_.width, configuration_.height);
  settings.pictureSize = run->size;
  settings.resizeFd = run->resized->fd();
  settings.memory = memory_;
  threads_->spawn(run->stop, [settings, body = body_, resized = run->resized,
                              events = eventsFor(&scheduler_, weak_from_this(), run)] {
    body(settings, events);
  });
}

void ThreadedCaptureStream::updateConfiguration(const StreamConfiguration& configuration,
                                                CaptureCompletion completion) {
  if (configuration.pixelFormat != pixelFormatBGRA) {
    return fail(std::move(completion), "only BGRA frames can be captured");
  }
  configuration_ = configuration;
  if (run_) {
    run_->size->set(configuration_.width, configuration_.height);
    run_->resized->raise();
  }
  scheduler_.async([completion = std::move(completion)] { completion(std::nullopt); });
}

// The capture thread reaches the stream only through the scheduler, and only while it lives.
// `scheduler` outlives the service and its threads.
GrabberEvents ThreadedCaptureStream::eventsFor(Scheduler* scheduler,
                                               std::weak_ptr<ThreadedCaptureStream> weak,
                                               std::shared_ptr<Run> run) {
  GrabberEvents events;
  events.started = [scheduler, weak, run](std::optional<CaptureError> error) {
    scheduler->async([weak, run, error] { started(weak, run, error); });
  };
  events.frame = [scheduler, weak, run](FrameRef frame) {
    bool post;
    {
      std::lock_guard lock(run->mutex);
      post = !run->latest;
      run->latest = std::move(frame);
    }
    if (!post) return;  // the hop already queued will take the newer frame
    scheduler->async([weak, run] {
      if (auto self = weak.lock()) self->onFrame(run);
    });
  };
  events.ended = [scheduler, weak, run](std::optional<CaptureError> error) {
    scheduler->async([weak, run, error] { ended(weak, run, error); });
  };
  return events;
}

// Completions run even when the stream itself is gone: whoever waits for them still waits.
void ThreadedCaptureStream::started(const std::weak_ptr<ThreadedCaptureStream>& weak,
                                    const std::shared_ptr<Run>& run,
                                    std::optional<CaptureError> error) {
  auto completion = std::move(run->startCompletion);
  run->startCompletion = nullptr;
  auto self = weak.lock();
  if (!error && (!self || run != self->run_)) error = CaptureError{"stopped before it started"};
  run->startFailed = error.has_value();
  if (completion) completion(error);
}

void ThreadedCaptureStream::onFrame(const std::shared_ptr<Run>& run) {
  FrameRef frame;
  {
    std::lock_guard lock(run->mutex);
    frame = std::move(run->latest);
    run->latest = nullptr;
  }
  if (run != run_ || !frame) return;  // a stop ends delivery at once
  const SampleBuffer sample{frame};
  const auto outputs = outputs_;
  for (const auto& [output, type] : outputs) output->didOutputSampleBuffer(*this, sample, type);
}

void ThreadedCaptureStream::ended(const std::weak_ptr<ThreadedCaptureStream>& weak,
                                  const std::shared_ptr<Run>& run,
                                  std::optional<CaptureError> error) {
  auto stopCompletion = std::move(run->stopCompletion);
  run->stopCompletion = nullptr;
  run->startCompletion = nullptr;
  if (stopCompletion) stopCompletion(std::nullopt);
  auto self = weak.lock();
  if (!self || run != self->run_) return;
  // Ended by itself: the display went away or the server broke.
  self->run_ = nullptr;
  self->endedAlone_ = error ? *error : CaptureError{"the capture ended"};
  if (!run->startFailed && self->didStopWithError_) self->didStopWithError_(*self->endedAlone_);
}

void ThreadedCaptureStream::stopCapture(CaptureCompletion completion) {
  if (!run_) {
    return fail(std::move(completion),
                endedAlone_ ? endedAlone_->message : "the stream is not running");
  }
  run_->stopCompletion = std::move(completion);
  run_->stop->raise();
  run_ = nullptr;
}

}  // namespace orlet::linux_capture
