#pragma once

#include <functional>

#include "platform/CaptureService.h"

namespace orlet {

// Passes a stream's screen samples to a handler; in one-shot mode only the first one.
class StreamOutput final : public CaptureStreamOutput {
 public:
  using Handler = std::function<void(const SampleBuffer&)>;

  explicit StreamOutput(Handler handler) : StreamOutput(false, std::move(handler)) {}
  StreamOutput(bool oneShot, Handler handler) : handler_(std::move(handler)), oneShot_(oneShot) {}

  void didOutputSampleBuffer(CaptureStream& stream, const SampleBuffer& sample,
                             StreamOutputType type) override;

  bool oneShot() const { return oneShot_; }
  // Set once the first sample has been passed on in one-shot mode.
  bool didOutput() const { return didOutput_; }

 private:
  Handler handler_;
  bool didOutput_ = false;
  const bool oneShot_;
};

}  // namespace orlet
