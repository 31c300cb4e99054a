#include "linux/capture/X11CaptureService.h"

#include <cstdio>

#include "linux/capture/Monitors.h"
#include "linux/capture/RootFormat.h"
#include "linux/capture/ThreadedCaptureStream.h"
#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

X11CaptureService::X11CaptureService(Scheduler& scheduler, std::string displayName)
    : scheduler_(scheduler),
      displayName_(std::move(displayName)),
      memory_(SharedMemoryPool::make(scheduler_, displayName_)) {}

// Streams may still be held (by a pending timer of the main queue, say): their threads end here
// all the same, so none of them reports to a main queue that is being torn down.
X11CaptureService::~X11CaptureService() {
  threads_->close();
}

void X11CaptureService::shareableContent(
    std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)> completion) {
  // The RandR round trips happen on a worker thread with its own connection: the main thread
  // never waits for the server. Each query sees the monitors as they are now, hotplug included.
  // A screen whose pixels cannot be read offers no display, and says why once.
  Scheduler* scheduler = &scheduler_;
  threads_->spawn(nullptr, [scheduler, name = displayName_, completion = std::move(completion),
                            said = unreadableSaid_] {
    std::string error;
    std::optional<ShareableContent> content;
    if (auto connection = XcbConnection::open(name.empty() ? nullptr : name.c_str(), error)) {
      const auto& screen = connection->screen();
      if (auto why = unreadableRootFormat(*xcb_get_setup(connection->get()), screen)) {
        content = ShareableContent{{}, screen.root_depth};
        if (!said->exchange(true)) {
          std::fprintf(stderr, "orlet: les écrans ne peuvent pas être montrés : %s\n",
                       why->c_str());
        }
      } else if (auto displays = queryDisplays(*connection, initRandr(*connection), error)) {
        content = ShareableContent{std::move(*displays)};
      }
    }
    scheduler->async([completion, content = std::move(content), error] {
      if (!content) return completion(std::nullopt, CaptureError{error});
      completion(content, std::nullopt);
    });
  });
}

std::shared_ptr<CaptureStream> X11CaptureService::makeStream(
    const Display& display, const StreamConfiguration& configuration) {
  return std::make_shared<ThreadedCaptureStream>(scheduler_, threads_, &runGrabber, memory_,
                                                 displayName_, display, configuration);
}

}  // namespace orlet::linux_capture
