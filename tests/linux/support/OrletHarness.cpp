#include "OrletHarness.h"

#include "WindowManager.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace orlet::x11test {
namespace fs = std::filesystem;

bool near(std::uint32_t a, std::uint32_t b) {
  for (int shift : {0, 8, 16}) {
    if (std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)) > 24) return false;
  }
  return true;
}

// Worked out by hand from the layout of the 900 x 600 panel rather than with the layout code, so
// that a layout fault is not shared by the test: four columns of 209 (8 padding, 16 apart, at
// least 200 wide); in each card a 120-high picture inside a 6-pixel shadow margin, so 16:9 fitted
// into 197 x 120; the enlarged picture 16:9 fitted into the whole panel.
Rect thumbnail(const WindowRect& m, int index) {
  EXPECT_EQ(m.width, 900);
  EXPECT_EQ(m.height, 600);
  return {8 + 6 + index * (209.0 + 16), 8 + 6 + 4.59375, 197, 110.8125};
}

Rect enlarged(const WindowRect& m) {
  EXPECT_EQ(m.width, 900);
  EXPECT_EQ(m.height, 600);
  return {0, 46.875, 900, 506.25};
}

Rect enlargedOnScreen(const WindowRect& m) {
  const Rect p = enlarged(m);
  return {m.x + p.x, m.y + p.y, p.width, p.height};
}

void OrletTest::SetUp() {
  session_ = std::make_unique<XSession>(sessionOptions_, sessionHasTray_);
  x_ = std::make_unique<XProbe>(session_->display());
  std::string pattern = (fs::temp_directory_path() / "orlet-x11-home-XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  home_ = pattern;
  fs::create_directories(home_ / "run");
  fs::permissions(home_ / "run", fs::perms::owner_all);
  // Names the editor stand-in the way an installed editor is named: by its desktop entry.
  const auto& stand = editorStandIn_;
  fs::create_directories(home_ / "data" / "applications");
  if (!stand.entry.empty()) {
    fs::copy_file(fs::path(ORLET_STANDIN_ENTRIES) / stand.entry,
                  home_ / "data" / "applications" / stand.entry);
  }
  std::vector<std::string> editor{"--class",   stand.className,  "--instance", stand.instance,
                                  "--title",   stand.title,      "--geometry", "800x600+300+200",
                                  "--palette", "40x40+1250+150", "--color",    "4a6078"};
  if (!editorViewerGeometry_.empty()) {
    editor.insert(editor.end(), {"--viewer", editorViewerGeometry_});
  }
  editor_ = startStandIn("editor", editor);
  other_ = startStandIn(
      "other", {"--class", "OtherApp", "--instance", "otherapp", "--title", "Other application",
                "--geometry", "700x500+600+350", "--color", "8a4a30"});
  ASSERT_NE(editorWindow_, XCB_NONE);
  ASSERT_NE(otherWindow_, XCB_NONE);
  activate(editorWindow_);
}

void OrletTest::TearDown() {
  orlet_.reset();
  editor_.reset();
  other_.reset();
  x_.reset();
  session_.reset();
  std::error_code ignored;
  fs::remove_all(home_, ignored);
}

// The stand-in prints "window <main> <palette> <viewer>" once its windows exist.
std::unique_ptr<Process> OrletTest::startStandIn(const std::string& name,
                                                 std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ORLET_STANDIN_BINARY);
  auto process = std::make_unique<Process>(
      arguments, std::map<std::string, std::string>{{"DISPLAY", session_->display()}},
      (home_ / (name + ".log")).string());
  unsigned main = 0, palette = 0, viewer = 0;
  if (eventually([&] { return process->output().find("window 0x") != std::string::npos; })) {
    const auto output = process->output();
    std::sscanf(output.c_str() + output.find("window "), "window %x %x %x", &main, &palette,
                &viewer);
  }
  // Shown, not only managed: a window manager that focuses a window when it maps it (metacity)
  // lists it first, and would otherwise give it the focus after the test's first activation.
  const auto managed = [&](xcb_window_t w) {
    const auto list = x_->clientList();
    return w == 0 || (std::find(list.begin(), list.end(), w) != list.end() && x_->isViewable(w));
  };
  eventually([&] { return managed(main) && managed(palette) && managed(viewer); });
  (name == "editor" ? editorWindow_ : otherWindow_) = main;
  if (name == "editor") {
    paletteWindow_ = palette;
    viewerWindow_ = viewer;
  }
  return process;
}

// A fresh configuration and data home; no D-Bus session, so the tray is trayer's XEmbed one.
void OrletTest::startOrlet(const std::vector<std::string>& arguments) {
  orlet_.reset();  // one ORLET a session: a second would leave at once
  orlet_ = launchOrlet(arguments);
  ASSERT_TRUE(eventually([&] { return isShown(button()); }, 10s)) << orlet_->output();
}

std::unique_ptr<Process> OrletTest::launchOrlet(const std::vector<std::string>& arguments) {
  std::map<std::string, std::string> environment{
      {"DISPLAY", session_->display()},
      {"HOME", home_.string()},
      {"XDG_CONFIG_HOME", (home_ / "config").string()},
      {"XDG_DATA_HOME", (home_ / "data").string()},
      {"XDG_RUNTIME_DIR", (home_ / "run").string()},
      {"DBUS_SESSION_BUS_ADDRESS", ""},
      {"WAYLAND_DISPLAY", ""},
  };
  for (const auto& [name, value] : orletEnvironment_) environment[name] = value;
  const auto log = home_ / ("orlet-" + std::to_string(++orletRuns_) + ".log");
  std::vector<std::string> argv{ORLET_BINARY};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return std::make_unique<Process>(argv, environment, log);
}

std::optional<int> OrletTest::quitThroughMenu() {
  click(centreOf(rectOf(button())), 3);
  if (!eventually([&] { return popup().has_value(); })) return std::nullopt;
  const auto menu = rectOf(*popup());
  click({menu.x + menu.width / 2, menu.y + menu.height - 12});  // "Quitter", the last entry
  return orlet_->waitForExit(5s);
}

int OrletTest::levelOf(xcb_window_t window) {
  const auto stacking = x_->visibleStacking();
  const auto it = std::find(stacking.begin(), stacking.end(), window);
  return it == stacking.end() ? -1 : static_cast<int>(it - stacking.begin());
}

xcb_window_t OrletTest::orletWindow(bool (*fits)(const WindowRect&)) {
  if (!orlet_) return XCB_NONE;
  for (auto w : x_->topLevelsOf(orlet_->pid())) {
    if (fits(x_->rect(w)) && !x_->isOverrideRedirect(w)) return w;
  }
  return XCB_NONE;
}

xcb_window_t OrletTest::button() {
  return orletWindow([](const WindowRect& r) { return r.width == 40 && r.height == 40; });
}

xcb_window_t OrletTest::mirror() {
  return orletWindow([](const WindowRect& r) { return r.width >= 200 && r.height >= 100; });
}

// Some window managers (Mutter) move a window again just after mapping it: the place is read
// once two looks agree. A compositing one (Mutter) also lets a new window grow into place, and
// until it is whole on screen takes a click on its edge for one on whatever it still shows
// there: the mirror counts as shown, as for a user, once the screen shows its corners.
WindowRect OrletTest::showMirror() {
  click(centreOf(rectOf(button())));
  EXPECT_TRUE(eventually([&] { return isShown(mirror()); }));
  WindowRect last;
  eventually([&] {
    const auto now = rectOf(mirror());
    return std::exchange(last, now) == now;
  });
  if (sessionWindowManager().composites) {
    const auto drawn = [&](int x, int y) {
      return near(x_->pixel(last.x + x, last.y + y), x_->pixels({x, y, 1, 1}, mirror()).front());
    };
    EXPECT_TRUE(eventually([&] { return drawn(last.width - 2, 2) && drawn(2, last.height - 2); }));
  }
  return last;
}

std::optional<xcb_window_t> OrletTest::popup() {
  for (auto w : x_->topLevelsOf(orlet_->pid())) {
    if (x_->isOverrideRedirect(w) && x_->isViewable(w)) return w;
  }
  return std::nullopt;
}

void OrletTest::xdotool(const std::string& arguments) {
  const std::string command = "DISPLAY=" + session_->display() + " xdotool " + arguments;
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

// One xdotool run: the server handles the warp before the button, so no waiting is needed (and
// "--sync" would wait in vain for motion when the pointer is already there).
void OrletTest::click(Spot at, int button) {
  xdotool("mousemove " + std::to_string(at.x) + " " + std::to_string(at.y) + " click " +
          std::to_string(button));
}

// In steps, as a hand would, so that whoever follows the drag (the panel itself, or the window
// manager once the panel has handed it a move or resize) sees motion all the way. One xdotool
// run for the whole gesture: its short pauses keep their length on a busy machine, where a
// process per step would leave the pointer still for as long as a process takes to start.
void OrletTest::drag(Spot from, Spot to) {
  std::string gesture;
  const auto moveTo = [&](int x, int y) {
    gesture += " mousemove " + std::to_string(x) + " " + std::to_string(y) + " sleep 0.02";
  };
  moveTo(from.x, from.y);
  gesture += " mousedown 1";
  constexpr int steps = 12;
  for (int i = 1; i <= steps; ++i) {
    moveTo(from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps);
  }
  moveTo(to.x + 1, to.y);
  moveTo(to.x, to.y);
  xdotool(gesture + " mouseup 1");
}

void OrletTest::activate(xcb_window_t window) {
  x_->activate(window);
  ASSERT_TRUE(eventually([&] { return x_->activeWindow() == window; }));
}

void OrletTest::raise(xcb_window_t window) {
  x_->raise(window);
}

bool OrletTest::editorReceivesKey(const std::string& name, const std::string& keysym) {
  xdotool("key " + name);
  return eventually([&] { return editor_->output().find("key " + keysym) != std::string::npos; });
}

std::string OrletTest::settingsText() const {
  std::ifstream in(settingsFile());
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Keys without a group sit in QSettings' [General] section.
std::optional<std::string> OrletTest::setting(const std::string& key) const {
  std::ifstream in(settingsFile());
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(key + "=", 0) == 0) return line.substr(key.size() + 1);
  }
  return std::nullopt;
}

}  // namespace orlet::x11test

namespace orlet::x11test {

void OrletTest::presetSettings(const std::string& lines) {
  fs::create_directories(settingsFile().parent_path());
  std::ofstream(settingsFile()) << "[General]\n" << lines;
}

xcb_window_t OrletTest::openSettings() {
  click(centreOf(rectOf(button())), 3);
  EXPECT_TRUE(eventually([&] { return popup().has_value(); }));
  if (!popup()) return XCB_NONE;
  const auto menu = rectOf(*popup());
  click({menu.x + menu.width / 2, menu.y + 12});  // "Paramètres…", the first entry
  // The editor's row below the shortcut's, one line taller while no editor is known.
  const auto fits = [](const WindowRect& r) {
    return r.width == 320 && (r.height == 210 || r.height == 226);
  };
  EXPECT_TRUE(eventually([&] { return isShown(orletWindow(fits)); }));
  return orletWindow(fits);
}

int OrletTest::editorLogged(const std::string& line) const {
  const auto log = editor_->output();
  int count = 0;
  for (auto at = log.find(line + "\n"); at != std::string::npos;
       at = log.find(line + "\n", at + 1)) {
    if (at == 0 || log[at - 1] == '\n') ++count;
  }
  return count;
}

}  // namespace orlet::x11test
