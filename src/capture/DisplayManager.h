#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <vector>

#include "foundation/Lifetime.h"
#include "foundation/Observable.h"
#include "foundation/Scheduler.h"
#include "platform/CaptureService.h"
#include "platform/DisplayInfo.h"
#include "platform/SyntheticInput.h"

namespace orlet {

// What replaying clicks on a display needs; without it, clicks are dropped. All must outlive
// the display manager, and `input` any click still in progress.
struct ClickForwardingPorts {
  const DisplayInfoProvider* displayInfo = nullptr;
  SyntheticInput* input = nullptr;
  std::ostream* diagnostics = nullptr;  // one line per click
};

// The catalogue of displays that really deliver pictures, main display first. Owned by the
// display selector and shared with its previews. Main thread only.
class DisplayManager {
 public:
  // How long a test capture may take to deliver its first picture.
  static constexpr Seconds testPeriod{0.1};
  // Between the press and the release of a replayed click.
  static constexpr Seconds clickPressDuration{0.010};

  using ClickPorts = ClickForwardingPorts;

  DisplayManager(Scheduler& scheduler, CaptureService& service, ClickPorts clicks = {});
  DisplayManager(const DisplayManager&) = delete;
  DisplayManager& operator=(const DisplayManager&) = delete;

  Published<std::vector<Display>> displays;  // validated displays, main first
  Published<bool> isLoading{false};          // a refresh is running
  Published<bool> hasPermission{false};      // written by the selector
  // The screen's depth when the service cannot read its pixels at all, 0 when it can.
  Published<int> unreadableDepth{0};

  // Lists the service's displays, keeps those whose test capture delivers a picture (one at a
  // time, in the service's order) and publishes them main first. Does nothing while a refresh
  // runs. When the list cannot be had, only isLoading returns to false.
  void refresh();

  // Runs a test capture of `display` for testPeriod; `completion` gets whether its first screen
  // sample carried a picture and the capture started and stopped without error.
  void validate(const Display& display, std::function<void(bool)> completion);

  // Stops every running test capture without waiting; each of those validations fails on the
  // next turn, so a refresh it interrupts ends without waiting out the test period.
  void stopAll();

  // How many validations have not finished.
  std::size_t activeStreamCount() const { return activeStreams_.size(); }

  // Replays a left click at `relative` (0..1 from the top-left corner) of `display`.
  void simulateClickOnDisplay(const Display& display, Point relative);

  // Stable: the main display first, every other display in its given order.
  static void sortMainFirst(std::vector<Display>& list);

 private:
  using Finish = std::function<void(bool)>;
  struct TestCapture {
    std::shared_ptr<CaptureStream> stream;
    Finish finish;  // answers once; later calls do nothing
  };
  void runValidation(const std::shared_ptr<CaptureStream>& stream, const Finish& finish);
  void endTestPeriod(const std::shared_ptr<CaptureStream>& stream,
                     const std::shared_ptr<bool>& gotPicture, const Finish& finish);
  void publish(std::vector<Display> kept);
  void forget(const std::shared_ptr<CaptureStream>& stream);
  void performMouseClick(Point target);

  Scheduler& scheduler_;
  CaptureService& service_;
  ClickPorts clicks_;
  std::vector<TestCapture> activeStreams_;
  Lifetime lifetime_;
};

}  // namespace orlet
