#include "Session.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace orlet::x11test {

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds timeout,
                const std::function<void()>& wait) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    if (wait) {
      wait();
    } else {
      std::this_thread::sleep_for(20ms);
    }
  }
  return true;
}

Process::Process(const std::vector<std::string>& argv,
                 const std::map<std::string, std::string>& environment, std::string outputPath)
    : outputPath_(std::move(outputPath)) {
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("fork failed");
  if (pid_ > 0) return;
  for (const auto& [name, value] : environment) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  const int fd = open(outputPath_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  dup2(fd, STDOUT_FILENO);
  dup2(fd, STDERR_FILENO);
  std::vector<char*> args;
  for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  execvp(args[0], args.data());
  _exit(127);
}

Process::~Process() {
  if (waitForExit(0ms)) return;
  kill(pid_, SIGTERM);
  if (!waitForExit(5s)) {
    kill(pid_, SIGKILL);
    waitForExit(5s);
  }
}

std::string Process::output() const {
  std::ifstream in(outputPath_);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::optional<int> Process::waitForExit(std::chrono::milliseconds timeout) {
  eventually(
      [&] {
        int status = 0;
        if (!status_ && waitpid(pid_, &status, WNOHANG) == pid_) {
          status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        return status_.has_value();
      },
      timeout);
  return status_;
}

namespace {

int xsession(const std::string& arguments, const std::string& runDirectory) {
  const std::string command = "ORLET_XSESSION_DIR='" + runDirectory + "' '" +
                              ORLET_XSESSION_SCRIPT + "' " + arguments + " >/dev/null 2>&1";
  return std::system(command.c_str());
}

}  // namespace

// A display whose lock file exists belongs to someone else (another test run, a developer's
// session); Xorg itself refuses a taken display, and the session script then leaves the winner's
// lock alone, so a lost race only moves on to the next. The pool is the first eight of the ten
// displays from ORLET_TEST_DISPLAY_FIRST (as configured, or as set now), so that runs from
// several checkouts on one machine never meet.
XSession::XSession(const std::string& options, bool tray) {
  const char* first = std::getenv("ORLET_TEST_DISPLAY_FIRST");
  const int base = first && *first ? std::atoi(first) : ORLET_TEST_DISPLAY_FIRST;
  for (int number = base; number < base + 8; ++number) {
    if (std::filesystem::exists("/tmp/.X" + std::to_string(number) + "-lock")) continue;
    display_ = ":" + std::to_string(number);
    runDirectory_ =
        "/tmp/orlet-x11-test-" + std::to_string(number) + "-" + std::to_string(getpid());
    if (xsession("start " + display_ + (tray ? " --tray " : " ") + options, runDirectory_) == 0) {
      return;
    }
    xsession("stop " + display_, runDirectory_);
  }
  throw std::runtime_error("no X session could be started on :" + std::to_string(base) +
                           " to :" + std::to_string(base + 7));
}

bool XSession::startTray() {
  return xsession("tray " + display_, runDirectory_) == 0;
}

bool XSession::windowManager(const std::string& action) {
  return xsession("wm " + display_ + " " + action, runDirectory_) == 0;
}

XSession::~XSession() {
  xsession("stop " + display_, runDirectory_);
  std::error_code ignored;
  std::filesystem::remove_all(runDirectory_, ignored);
}

}  // namespace orlet::x11test
