#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace orlet::linux_capture {

// An eventfd that wakes a capture thread's poll(): when the capture must end, or when something
// it reads has changed.
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
// on close() (or destruction) stops and joins the rest. Streams share it with the service and may
// outlive the service (a pending timer may hold one), so the service closes it itself: no thread
// outlives the service, whoever still holds a stream.
class WorkerThreads {
 public:
  WorkerThreads() = default;
  ~WorkerThreads();
  WorkerThreads(const WorkerThreads&) = delete;
  WorkerThreads& operator=(const WorkerThreads&) = delete;

  // Runs `body` on a new thread; `stop` (may be null) is raised at close(). Once closed, `body`
  // never runs.
  void spawn(std::shared_ptr<StopSignal> stop, std::function<void()> body);

  // Raises every stop signal and joins every thread; returns when none runs any more.
  void close();

 private:
  struct Worker {
    std::thread thread;
    std::shared_ptr<StopSignal> stop;
    std::shared_ptr<std::atomic<bool>> done;
  };
  void reapFinished();

  std::mutex mutex_;
  std::vector<Worker> workers_;
  bool closed_ = false;
};

}  // namespace orlet::linux_capture
