#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Session.h"
#include "XProbe.h"
#include "foundation/Geometry.h"

namespace orlet::x11test {

struct Spot {
  int x = 0, y = 0;
};

inline Spot centreOf(const WindowRect& r) {
  return {r.x + r.width / 2, r.y + r.height / 2};
}

// Two colours read off the screen are the same but for scaling and blending.
bool near(std::uint32_t a, std::uint32_t b);

// Both displays of the session are 16:9.
inline constexpr Size kDisplaySize{2560, 1440};
inline constexpr Rect kSecondDisplay{1920, 0, 2560, 1440};

// The picture of the card at `index` of the display grid in the mirror panel `m`, in panel
// coordinates.
Rect thumbnail(const WindowRect& m, int index);
// The picture of the enlarged mirror in the panel `m`, in panel coordinates.
Rect enlarged(const WindowRect& m);
// The same on the screen.
Rect enlargedOnScreen(const WindowRect& m);

// The application the stand-in editor plays: its window class, title and launcher entry (a file
// of tests/linux/standin/entries, installed under its own name; none for an application the
// desktop knows by its window class alone).
struct EditorStandIn {
  std::string instance, className, title, entry;

  static EditorStandIn captureOne() {
    return {"captureone", "CaptureOne", "Capture One 23", "com.captureone.CaptureOne.desktop"};
  }
  // As darktable names its windows and installs its entry.
  static EditorStandIn darktable() {
    return {"darktable", "Darktable", "darktable", "org.darktable.darktable.desktop"};
  }
  // An image viewer, which no rule takes for the editor.
  static EditorStandIn imageViewer() {
    return {"eog", "Eog", "photo.jpg", "org.gnome.eog.desktop"};
  }
};

// ORLET on its own X session, beside a stand-in editor ("Capture One 23" unless set otherwise:
// main window and a small palette) and a stand-in other application, with fresh XDG directories.
class OrletTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Starts ORLET with `arguments` and waits for its floating button.
  void startOrlet(const std::vector<std::string>& arguments = {});
  // Starts one more ORLET as startOrlet does, without waiting for anything.
  std::unique_ptr<Process> launchOrlet(const std::vector<std::string>& arguments = {});
  // Quits ORLET through "Quitter" in its status menu; its exit status.
  std::optional<int> quitThroughMenu();

  xcb_window_t button();
  // The mirror window once ORLET has created it (mapped or not), XCB_NONE before.
  xcb_window_t mirror();
  // Clicks the button and waits for the mirror; where it is shown.
  WindowRect showMirror();
  // A shown menu or popover of ORLET's.
  std::optional<xcb_window_t> popup();
  bool isShown(xcb_window_t window) { return x_->isViewable(window); }
  WindowRect rectOf(xcb_window_t window) { return x_->rect(window); }

  void click(Spot at, int button = 1);
  void drag(Spot from, Spot to);
  void activate(xcb_window_t window);
  void raise(xcb_window_t window);
  // Sends a key and waits until the editor logs it: it still has the keyboard focus.
  bool editorReceivesKey(const std::string& name, const std::string& keysym);

  std::optional<std::string> setting(const std::string& key) const;
  std::filesystem::path settingsFile() const { return home_ / "config" / "orlet" / "orlet.ini"; }
  // The whole configuration file as it is on disk now.
  std::string settingsText() const;
  // Writes settings before ORLET starts, as "key=value" lines of its configuration file.
  void presetSettings(const std::string& lines);

  // Opens "Paramètres" from the floating button's menu; the panel's window.
  xcb_window_t openSettings();
  // xdotool with these arguments, on the session.
  void xdotool(const std::string& arguments);
  // How many times the editor logged `line` ("key 0x6b", "release 0x6b").
  int editorLogged(const std::string& line) const;

  std::unique_ptr<XSession> session_;
  std::unique_ptr<XProbe> x_;
  std::filesystem::path home_;
  std::unique_ptr<Process> editor_, other_, orlet_;
  xcb_window_t editorWindow_ = XCB_NONE, paletteWindow_ = XCB_NONE, otherWindow_ = XCB_NONE;
  // More environment for ORLET, over the fresh one startOrlet gives it.
  std::map<std::string, std::string> orletEnvironment_;
  // Set before SetUp: more options of the X session ("--no-shm", "--depth 30").
  std::string sessionOptions_;
  // Set before SetUp: the editor also opens its crosshair viewer window there (WxH+X+Y).
  std::string editorViewerGeometry_;
  xcb_window_t viewerWindow_ = XCB_NONE;
  // Set false before SetUp for a session without a notification area.
  bool sessionHasTray_ = true;
  // Set before SetUp: what the editor stand-in plays.
  EditorStandIn editorStandIn_ = EditorStandIn::captureOne();

  // Where `window` is in the visible stacking order, bottom to top; -1 when it is not shown.
  int levelOf(xcb_window_t window);
  bool directlyAboveEditor() {
    const int editor = levelOf(editorWindow_);
    return editor >= 0 && levelOf(mirror()) == editor + 1;
  }
  bool pinned() { return x_->hasState(mirror(), x_->ewmh()._NET_WM_STATE_ABOVE); }
  // The pin button: 22 x 22, 8 from the top-right corner.
  static Spot pinButton(const WindowRect& m) { return {m.x + m.width - 8 - 11, m.y + 8 + 11}; }

 private:
  std::unique_ptr<Process> startStandIn(const std::string& name,
                                        std::vector<std::string> arguments);
  xcb_window_t orletWindow(bool (*fits)(const WindowRect&));
  int orletRuns_ = 0;
};

}  // namespace orlet::x11test
