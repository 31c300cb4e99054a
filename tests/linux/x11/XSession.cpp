#include "XSession.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace orlet::x11test {
namespace {

int script(const std::string& arguments, const std::string& runDirectory) {
  const std::string command = "ORLET_XSESSION_DIR='" + runDirectory + "' '" +
                              ORLET_XSESSION_SCRIPT + "' " + arguments + " >/dev/null 2>&1";
  return std::system(command.c_str());
}

}  // namespace

// A display whose lock file exists belongs to someone else (another test run, a developer's
// session); Xorg itself refuses a taken display, so a lost race only moves on to the next.
XSession::XSession() {
  for (int number = 50; number <= 59; ++number) {
    if (std::filesystem::exists("/tmp/.X" + std::to_string(number) + "-lock")) continue;
    const std::string display = ":" + std::to_string(number);
    const std::string runDirectory =
        "/tmp/orlet-x11-test-" + std::to_string(number) + "-" + std::to_string(getpid());
    if (script("start " + display + " --tray", runDirectory) == 0) {
      display_ = display;
      runDirectory_ = runDirectory;
      return;
    }
    script("stop " + display, runDirectory);
  }
  throw std::runtime_error("no X session could be started on :50 to :59");
}

XSession::~XSession() {
  script("stop " + display_, runDirectory_);
  std::error_code ignored;
  std::filesystem::remove_all(runDirectory_, ignored);
}

}  // namespace orlet::x11test
