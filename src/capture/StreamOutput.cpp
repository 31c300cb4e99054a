#include "capture/StreamOutput.h"

namespace orlet {

void StreamOutput::didOutputSampleBuffer(CaptureStream&, const SampleBuffer& sample,
                                         StreamOutputType type) {
  if (type != StreamOutputType::screen) return;
  if (oneShot_) {
    if (didOutput_) return;
    didOutput_ = true;
  }
  if (handler_) handler_(sample);
}

}  // namespace orlet
