#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orlet::x11test {

using namespace std::chrono_literals;

// Polls `condition` until it holds or `timeout` passes; `wait` runs between two polls (a short
// sleep when empty).
bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds timeout = 5s,
                const std::function<void()>& wait = {});

// A child process whose standard output and error go to a file the test can read; terminated
// (SIGTERM, then SIGKILL) and reaped when destroyed.
class Process {
 public:
  // `environment` entries override (or, with an empty value, remove) the test's own.
  Process(const std::vector<std::string>& argv,
          const std::map<std::string, std::string>& environment, std::string outputPath);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  pid_t pid() const { return pid_; }
  std::string output() const;
  // Its exit status once it ends by itself; nullopt on timeout.
  std::optional<int> waitForExit(std::chrono::milliseconds timeout);

 private:
  pid_t pid_ = -1;
  std::string outputPath_;
  std::optional<int> status_;
};

// A private X session (scripts/xsession.sh: Xorg dummy with two outputs, the window manager
// $ORLET_TEST_WM names or openbox, trayer unless `tray` is false) on the first free display among
// :50 to :59 (or the ten from ORLET_TEST_DISPLAY_FIRST), stopped again when destroyed.
class XSession {
 public:
  // `options`: more of the session script's start options ("--no-shm", "--depth 30").
  explicit XSession(const std::string& options = {}, bool tray = true);
  XSession(const XSession&) = delete;
  XSession& operator=(const XSession&) = delete;
  ~XSession();

  const std::string& display() const { return display_; }
  // Starts the tray host now, on a session started without it.
  bool startTray();
  // The window manager goes ("stop"), comes ("start") or is replaced by a new one ("replace");
  // false when the script fails.
  bool windowManager(const std::string& action);

 private:
  std::string display_;
  std::string runDirectory_;
};

}  // namespace orlet::x11test
