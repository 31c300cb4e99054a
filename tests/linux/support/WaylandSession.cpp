#include "WaylandSession.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>

namespace orlet::x11test {
namespace {

std::string run(const std::string& command) {
  std::string output;
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) return output;
  char buffer[4096];
  while (const auto n = std::fread(buffer, 1, sizeof buffer, pipe.get())) output.append(buffer, n);
  return output;
}

std::string trimmed(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text;
}

// One line a window: app_id, x, y, width, height, focused (0 or 1).
constexpr char treeWalker[] = R"(python3 -c '
import json, sys
def walk(node):
    if node.get("app_id") is not None:
        r = node["rect"]
        print(node["app_id"], r["x"], r["y"], r["width"], r["height"], int(node["focused"]))
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        walk(child)
walk(json.load(sys.stdin))')";

}  // namespace

// Each session a name of its own: the one before may still be going away.
SwaySession::SwaySession() {
  static int sessions = 0;
  name_ = "test-" + std::to_string(getpid()) + "-" + std::to_string(++sessions);
  display_ = trimmed(run(std::string(ORLET_SWAYSESSION_SCRIPT) + " start " + name_));
}

SwaySession::~SwaySession() {
  run(std::string(ORLET_SWAYSESSION_SCRIPT) + " stop " + name_);
}

std::string SwaySession::ipcSocket() const {
  const auto dir = std::filesystem::path(display_).parent_path();
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(dir, error)) {
    if (entry.path().filename().string().rfind("sway-ipc.", 0) == 0) return entry.path();
  }
  return {};
}

std::string SwaySession::swaymsg(const std::string& arguments) const {
  return run("SWAYSOCK='" + ipcSocket() + "' swaymsg " + arguments + " 2>&1");
}

std::vector<SwaySession::Window> SwaySession::windows() const {
  std::istringstream lines(
      run("SWAYSOCK='" + ipcSocket() + "' swaymsg -t get_tree | " + treeWalker));
  std::vector<Window> windows;
  Window w;
  int focused = 0;
  while (lines >> w.appId >> w.rect.x >> w.rect.y >> w.rect.width >> w.rect.height >> focused) {
    w.focused = focused != 0;
    windows.push_back(w);
  }
  return windows;
}

}  // namespace orlet::x11test
