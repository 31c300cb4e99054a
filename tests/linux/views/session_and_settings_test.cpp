#include <gtest/gtest.h>

#include <cstring>

#include "linux/qt/views/DesktopSettings.h"
#include "linux/x11/X11ScreenCapturePermission.h"

namespace orlet {
namespace {

TEST(SessionKind, WaylandWhenTheSessionSaysSoOrAWaylandDisplayIsSet) {
  using x11::SessionKind;
  struct Case {
    const char* sessionType;
    const char* waylandDisplay;
    SessionKind kind;
  };
  const Case cases[] = {
      {"x11", nullptr, SessionKind::x11},
      {nullptr, nullptr, SessionKind::x11},
      {"tty", "", SessionKind::x11},
      {"wayland", nullptr, SessionKind::wayland},
      {"x11", "wayland-0", SessionKind::wayland},  // XWayland inside a Wayland session
      {nullptr, "wayland-0", SessionKind::wayland},
  };
  for (const auto& c : cases) {
    const auto env = [&](const char* name) -> const char* {
      if (std::strcmp(name, "XDG_SESSION_TYPE") == 0) return c.sessionType;
      if (std::strcmp(name, "WAYLAND_DISPLAY") == 0) return c.waylandDisplay;
      return nullptr;
    };
    EXPECT_EQ(x11::sessionKindFromEnvironment(env), c.kind)
        << (c.sessionType ? c.sessionType : "-") << " "
        << (c.waylandDisplay ? c.waylandDisplay : "-");
  }
}

TEST(DesktopSettings, PrivacySettingsOpenOnlyWhereTheDesktopHasThem) {
  using linux_qt::SettingsCommand;
  const auto everything = [](const QString& name) { return "/usr/bin/" + name; };
  const auto nothing = [](const QString&) { return QString(); };
  EXPECT_EQ(linux_qt::privacySettingsCommand("ubuntu:GNOME", everything),
            (SettingsCommand{"/usr/bin/gnome-control-center", {"privacy"}}));
  EXPECT_EQ(linux_qt::privacySettingsCommand("KDE", everything),
            (SettingsCommand{"/usr/bin/systemsettings", {}}));
  EXPECT_EQ(linux_qt::privacySettingsCommand("GNOME", nothing), std::nullopt);
  EXPECT_EQ(linux_qt::privacySettingsCommand("XFCE", everything), std::nullopt);
  EXPECT_EQ(linux_qt::privacySettingsCommand("", everything), std::nullopt);
}

}  // namespace
}  // namespace orlet
