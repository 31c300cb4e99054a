#include "linux/capture/WorkerThreads.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

namespace orlet::linux_capture {

StopSignal::StopSignal() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

StopSignal::~StopSignal() {
  if (fd_ >= 0) close(fd_);
}

void StopSignal::raise() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(fd_, &one, sizeof one);
}

void WorkerThreads::spawn(std::shared_ptr<StopSignal> stop, std::function<void()> body) {
  std::lock_guard lock(mutex_);
  reapFinished();
  auto done = std::make_shared<std::atomic<bool>>(false);
  std::thread thread([body = std::move(body), done] {
    body();
    done->store(true, std::memory_order_release);
  });
  workers_.push_back({std::move(thread), std::move(stop), std::move(done)});
}

void WorkerThreads::reapFinished() {
  for (auto it = workers_.begin(); it != workers_.end();) {
    if (it->done->load(std::memory_order_acquire)) {
      it->thread.join();
      it = workers_.erase(it);
    } else {
      ++it;
    }
  }
}

WorkerThreads::~WorkerThreads() {
  std::lock_guard lock(mutex_);
  for (auto& worker : workers_) {
    if (worker.stop) worker.stop->raise();
  }
  for (auto& worker : workers_) worker.thread.join();
}

}  // namespace orlet::linux_capture
