#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Scheduler.h"
#include "linux/capture/Grabber.h"
#include "linux/capture/WorkerThreads.h"
#include "platform/CaptureService.h"

namespace orlet::linux_capture {

// The body of a capture thread: captures until its stop signal, reporting through the events.
using CaptureThreadBody = std::function<void(const GrabberSettings&, const GrabberEvents&)>;

// A capture stream whose pictures come from a thread of its own with its own connection to the
// display server (`body`: the X server's or a Wayland compositor's). The main-thread side only
// starts and stops that thread and hands its frames to the outputs.
class ThreadedCaptureStream final : public CaptureStream,
                                    public std::enable_shared_from_this<ThreadedCaptureStream> {
 public:
  ThreadedCaptureStream(Scheduler& scheduler, std::shared_ptr<WorkerThreads> threads,
                        CaptureThreadBody body, std::shared_ptr<SharedMemoryPool> memory,
                        std::string displayName, Display display,
                        StreamConfiguration configuration);
  // Ends a running capture without waiting for it.
  ~ThreadedCaptureStream() override;

  std::optional<CaptureError> addStreamOutput(std::shared_ptr<CaptureStreamOutput> output,
                                              StreamOutputType type) override;
  void startCapture(CaptureCompletion completion) override;
  void stopCapture(CaptureCompletion completion) override;
  void updateConfiguration(const StreamConfiguration& configuration,
                           CaptureCompletion completion) override;
  void setDidStopWithError(std::function<void(CaptureError)> handler) override {
    didStopWithError_ = std::move(handler);
  }

 private:
  struct Run;  // one start-to-end of the capture thread
  static GrabberEvents eventsFor(Scheduler* scheduler, std::weak_ptr<ThreadedCaptureStream> weak,
                                 std::shared_ptr<Run> run);
  static void started(const std::weak_ptr<ThreadedCaptureStream>& weak,
                      const std::shared_ptr<Run>& run, std::optional<CaptureError> error);
  void onFrame(const std::shared_ptr<Run>& run);
  static void ended(const std::weak_ptr<ThreadedCaptureStream>& weak,
                    const std::shared_ptr<Run>& run, std::optional<CaptureError> error);
  void fail(CaptureCompletion completion, std::string message);

  Scheduler& scheduler_;
  std::shared_ptr<WorkerThreads> threads_;
  CaptureThreadBody body_;
  std::shared_ptr<SharedMemoryPool> memory_;
  std::string displayName_;
  Display display_;
  StreamConfiguration configuration_;
  std::vector<std::pair<std::shared_ptr<CaptureStreamOutput>, StreamOutputType>> outputs_;
  std::shared_ptr<Run> run_;  // the running capture; null when stopped
  std::function<void(CaptureError)> didStopWithError_;
  std::optional<CaptureError> endedAlone_;  // why the last capture ended without a stop
};

}  // namespace orlet::linux_capture
