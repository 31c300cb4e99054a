#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace orlet::linux_capture {

// An eventfd that wakes a capture thread's poll() when the capture must end.
class StopSignal {
 public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;
  void raise() const;
  int fd() const { return fd_; }

 private:
  int fd_;
};

// Owns the capture service's threads: joins those that finished whenever a new one starts, and
// on destruction stops and joins the rest, so no thread outlives the service's last user.
class WorkerThreads {
 public:
  WorkerThreads() = default;
  ~WorkerThreads();
  WorkerThreads(const WorkerThreads&) = delete;
  WorkerThreads& operator=(const WorkerThreads&) = delete;

  // Runs `body` on a new thread; `stop` (may be null) is raised at destruction.
  void spawn(std::shared_ptr<StopSignal> stop, std::function<void()> body);

 private:
  struct Worker {
    std::thread thread;
    std::shared_ptr<StopSignal> stop;
    std::shared_ptr<std::atomic<bool>> done;
  };
  void reapFinished();

  std::mutex mutex_;
  std::vector<Worker> workers_;
};

}  // namespace orlet::linux_capture
