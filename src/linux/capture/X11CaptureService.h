#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "foundation/Scheduler.h"
#include "linux/capture/SharedMemoryPool.h"
#include "linux/capture/WorkerThreads.h"
#include "platform/CaptureService.h"

namespace orlet::linux_capture {

// Screen capture on an X11 server: displays are RandR 1.5 monitors; each stream reads its
// monitor on a thread of its own (MIT-SHM, driven by DAMAGE). `scheduler` must outlive the
// service; destroying the service stops and joins every thread it or its streams started, even
// while streams live on (a stream started after that captures nothing).
class X11CaptureService final : public CaptureService {
 public:
  explicit X11CaptureService(Scheduler& scheduler, std::string displayName = {});
  ~X11CaptureService() override;

  void shareableContent(
      std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)> completion)
      override;
  std::shared_ptr<CaptureStream> makeStream(const Display& display,
                                            const StreamConfiguration& configuration) override;

 private:
  Scheduler& scheduler_;
  std::string displayName_;
  std::shared_ptr<WorkerThreads> threads_ = std::make_shared<WorkerThreads>();
  std::shared_ptr<SharedMemoryPool> memory_;
  std::shared_ptr<std::atomic<bool>> unreadableSaid_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace orlet::linux_capture
