#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orlet::x11test {

// A child process whose standard output and error go to a file the test can read. Terminated
// (and reaped) when destroyed.
class Process {
 public:
  // `environment` entries override (or, with an empty value, remove) the test's own.
  Process(std::vector<std::string> argv, std::map<std::string, std::string> environment,
          std::string outputPath);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  pid_t pid() const { return pid_; }
  std::string output() const;
  bool isRunning();
  // Waits for the process to end by itself; its exit status, nullopt on timeout.
  std::optional<int> waitForExit(std::chrono::milliseconds timeout);
  // SIGTERM, then SIGKILL if it does not end within a few seconds.
  void terminate();

 private:
  pid_t pid_ = -1;
  std::string outputPath_;
  std::optional<int> status_;
};

}  // namespace orlet::x11test
