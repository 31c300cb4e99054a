#include "Process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace orlet::x11test {
namespace {

[[noreturn]] void execChild(const std::vector<std::string>& argv,
                            const std::map<std::string, std::string>& environment,
                            const std::string& outputPath) {
  for (const auto& [name, value] : environment) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  const int fd = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  if (fd >= 0) {
    dup2(fd, STDOUT_FILENO);
    dup2(fd, STDERR_FILENO);
    close(fd);
  }
  std::vector<char*> args;
  for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  execvp(args[0], args.data());
  _exit(127);
}

}  // namespace

Process::Process(std::vector<std::string> argv, std::map<std::string, std::string> environment,
                 std::string outputPath)
    : outputPath_(std::move(outputPath)) {
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("fork failed");
  if (pid_ == 0) execChild(argv, environment, outputPath_);
}

Process::~Process() {
  terminate();
}

std::string Process::output() const {
  std::ifstream in(outputPath_);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

bool Process::isRunning() {
  if (status_) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) == pid_) {
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
  }
  return true;
}

std::optional<int> Process::waitForExit(std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (isRunning()) {
    if (std::chrono::steady_clock::now() > deadline) return std::nullopt;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return status_;
}

void Process::terminate() {
  if (pid_ <= 0 || !isRunning()) return;
  kill(pid_, SIGTERM);
  if (!waitForExit(std::chrono::seconds(5))) {
    kill(pid_, SIGKILL);
    waitForExit(std::chrono::seconds(5));
  }
}

}  // namespace orlet::x11test
