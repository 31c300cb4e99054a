#include "capture/StreamOutput.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/FakeCaptureService.h"
#include "support/VirtualScheduler.h"

namespace orlet {
namespace {

struct Recorder {
  std::vector<FrameRef> received;
  StreamOutput::Handler handler() {
    return [this](const SampleBuffer& sample) { received.push_back(sample.imageBuffer); };
  }
};

class StreamOutputTest : public ::testing::Test {
 protected:
  test::VirtualScheduler scheduler;
  test::FakeCaptureService service{scheduler};
  std::shared_ptr<CaptureStream> stream =
      service.makeStream(test::makeDisplay(1, 2, 2), StreamConfiguration{});
  FrameRef picture(int i) { return frames[i]; }
  std::vector<FrameRef> frames{service.makeFrame(2, 2), service.makeFrame(2, 2),
                               service.makeFrame(2, 2)};
};

TEST_F(StreamOutputTest, OneShotPassesOnlyTheFirstScreenSampleAndNormalPassesAll) {
  Recorder once;
  Recorder every;
  StreamOutput oneShot(true, once.handler());
  StreamOutput normal(every.handler());
  EXPECT_FALSE(oneShot.didOutput());

  for (int i = 0; i < 3; ++i) {
    oneShot.didOutputSampleBuffer(*stream, {picture(i)}, StreamOutputType::screen);
    normal.didOutputSampleBuffer(*stream, {picture(i)}, StreamOutputType::screen);
  }

  EXPECT_EQ(once.received, std::vector<FrameRef>{picture(0)});
  EXPECT_TRUE(oneShot.didOutput());
  EXPECT_EQ(every.received, frames);
  EXPECT_FALSE(normal.didOutput());
}

TEST_F(StreamOutputTest, AFirstSampleWithoutPictureUsesUpTheShot) {
  Recorder once;
  StreamOutput oneShot(true, once.handler());

  oneShot.didOutputSampleBuffer(*stream, {nullptr}, StreamOutputType::screen);
  oneShot.didOutputSampleBuffer(*stream, {picture(0)}, StreamOutputType::screen);

  EXPECT_EQ(once.received, std::vector<FrameRef>{nullptr});
}

}  // namespace
}  // namespace orlet
