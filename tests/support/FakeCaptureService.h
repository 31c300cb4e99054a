#pragma once

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/Scheduler.h"
#include "platform/CaptureService.h"

namespace orlet::test {

// A sample a started fake stream delivers by itself, `at` after its start completed.
struct FakeSample {
  Seconds at{0};
  bool withImage = true;
  StreamOutputType type = StreamOutputType::screen;
};

// Steps of a display's streams that fail.
struct FakeFailures {
  bool addOutput = false;
  bool start = false;
  bool stop = false;
};

class FakeCaptureService;

// A stream that runs on the scheduler: completions and samples arrive on later turns.
class FakeCaptureStream final : public CaptureStream,
                                public std::enable_shared_from_this<FakeCaptureStream> {
 public:
  FakeCaptureStream(FakeCaptureService& service, Display display,
                    StreamConfiguration configuration);

  std::optional<CaptureError> addStreamOutput(std::shared_ptr<CaptureStreamOutput> output,
                                              StreamOutputType type) override;
  void startCapture(CaptureCompletion completion) override;
  void stopCapture(CaptureCompletion completion) override;
  void setDidStopWithError(std::function<void(CaptureError)> handler) override {
    didStopWithError_ = std::move(handler);
  }
  void updateConfiguration(const StreamConfiguration& configuration,
                           CaptureCompletion completion) override;

  // Ends a running capture as if its display went away.
  void endWithError(CaptureError error);

  const Display& display() const { return display_; }
  const StreamConfiguration& configuration() const { return configuration_; }
  bool isRunning() const { return running_; }

  // Delivers a sample one turn later, if the stream is running then; returns its picture.
  FrameRef deliver(bool withImage = true, StreamOutputType type = StreamOutputType::screen);

 private:
  void send(const FrameRef& frame, StreamOutputType type);
  void scheduleScript();

  FakeCaptureService& service_;
  Display display_;
  StreamConfiguration configuration_;
  std::vector<std::pair<std::shared_ptr<CaptureStreamOutput>, StreamOutputType>> outputs_;
  std::function<void(CaptureError)> didStopWithError_;
  bool running_ = false;
  unsigned runs_ = 0;  // tells a later run's samples from an earlier run's
};

// Capture service whose displays, samples and failures the test chooses.
class FakeCaptureService final : public CaptureService {
 public:
  explicit FakeCaptureService(Scheduler& scheduler) : scheduler_(scheduler) {}

  void shareableContent(
      std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)> completion)
      override;
  std::shared_ptr<CaptureStream> makeStream(const Display& display,
                                            const StreamConfiguration& configuration) override;

  // A picture of `width` x `height` whose every pixel is a fresh serial number.
  FrameRef makeFrame(int width, int height);

  std::vector<Display> displays;                         // what shareableContent lists
  bool contentAbsent = false;                            // list nothing, without an error
  int unreadableDepth = 0;                               // a screen no capture can read
  std::optional<CaptureError> contentError;              // fail the listing
  std::map<DisplayID, std::vector<FakeSample>> samples;  // default: one picture at once
  std::map<DisplayID, FakeFailures> failures;
  Seconds startLatency{0};
  Seconds stopLatency{0};
  std::vector<std::shared_ptr<FakeCaptureStream>> streams;  // every stream made, in order

 private:
  friend class FakeCaptureStream;
  Scheduler& scheduler_;
  std::uint32_t nextSerial_ = 1;
};

// A display with the given id and size, placed at `x`, 0.
Display makeDisplay(DisplayID id, int width, int height, double x = 0, bool isMain = false);

}  // namespace orlet::test
