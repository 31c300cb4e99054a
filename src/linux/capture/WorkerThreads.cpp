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
  if (closed_) return;
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

void WorkerThreads::close() {
  std::vector<Worker> workers;
  {
    std::lock_guard lock(mutex_);
    closed_ = true;
    workers.swap(workers_);
  }
  for (auto& worker : workers) {
    if (worker.stop) worker.stop->raise();
  }
  for (auto& worker : workers) worker.thread.join();
}

WorkerThreads::~WorkerThreads() {
  close();
}

}  // namespace orlet::linux_capture
