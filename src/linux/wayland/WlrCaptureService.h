#pragma once

#include <memory>
#include <string>

#include "foundation/Scheduler.h"
#include "linux/capture/Grabber.h"
#include "linux/capture/WorkerThreads.h"
#include "linux/wayland/WaylandConnection.h"
#include "platform/CaptureService.h"

namespace orlet::wayland {

// The capture of a wlroots compositor's outputs: each stream copies its output through
// screencopy on a thread of its own with a connection of its own, only once something changed,
// and reduces what changed as the X11 capture does.
class WlrCaptureService final : public CaptureService {
 public:
  // `connection`: the main thread's, which knows the outputs; `displayName`: what the streams'
  // threads connect to (as in $WAYLAND_DISPLAY; empty: that variable).
  WlrCaptureService(Scheduler& scheduler, WaylandConnection& connection, std::string displayName);
  ~WlrCaptureService() override;

  void shareableContent(
      std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)> completion)
      override;
  std::shared_ptr<CaptureStream> makeStream(const Display& display,
                                            const StreamConfiguration& configuration) override;

  // An output's identity: a hash of its connector's name, which the compositor keeps from one
  // connection, and one session, to the next.
  static DisplayID idOf(const std::string& outputName);

 private:
  Scheduler& scheduler_;
  WaylandConnection& connection_;
  std::string displayName_;
  std::shared_ptr<linux_capture::WorkerThreads> threads_ =
      std::make_shared<linux_capture::WorkerThreads>();
};

// The body of a capture thread on a wlroots compositor (`settings.displayName` is the
// compositor's socket, `settings.displayID` the output's idOf()).
void runWlrGrabber(const linux_capture::GrabberSettings& settings,
                   const linux_capture::GrabberEvents& events);

}  // namespace orlet::wayland
