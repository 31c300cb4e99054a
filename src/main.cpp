#include <QApplication>
#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTimer>
#include <cstdlib>
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "app/MainApp.h"
#include "app/SharedInstance.h"
#include "app/UpdateManager.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "linux/capture/X11CaptureService.h"
#include "linux/qt/QSettingsStore.h"
#include "linux/qt/QtApplication.h"
#include "linux/qt/QtPanelFactory.h"
#include "linux/qt/QtScheduler.h"
#include "linux/qt/QtSettingsPanel.h"
#include "linux/qt/QtStatusBar.h"
#include "linux/qt/StatsReport.h"
#include "linux/qt/XcbEventFilter.h"
#include "linux/qt/views/MirrorContent.h"
#include "linux/qt/views/MirrorInteraction.h"
#include "linux/update/InstallLocation.h"
#include "linux/update/LinuxUpdates.h"
#include "linux/x11/DisplayProbe.h"
#include "linux/x11/InstanceLock.h"
#include "linux/x11/X11CursorSource.h"
#include "linux/x11/X11KeyboardHook.h"
#include "linux/x11/X11SyntheticInput.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Workspace.h"
#include "settings/HotkeyManager.h"
#include "settings/SettingsWindowController.h"
#include "settings/ShortcutRecorderManager.h"
#include "update/UpdaterSettings.h"
#include "window/WindowController.h"

namespace {

using namespace orlet;

// ICCCM 4.1.2.5 instance name of our windows, whatever the executable is called; the
// workspace reports it as our identifier unless a desktop entry names us.
constexpr char instanceName[] = "orlet";

// Once the new version has run this long after an update, the one it replaced goes.
constexpr int confirmedAfterMs = 3000;

struct Options {
  bool stats = false;
};

// The command line, read before anything needs a display: --help and --version answer and
// exit, an unknown option is an error.
Options parseOptions(int argc, char** argv) {
  QCoreApplication::setApplicationVersion(QStringLiteral(ORLET_VERSION));
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("ORLET : miniature vivante et cliquable d'un écran, à côté de Capture One."));
  const QCommandLineOption help = parser.addHelpOption();
  const QCommandLineOption version = parser.addVersionOption();
  const QCommandLineOption stats(
      QStringLiteral("stats"),
      QStringLiteral("Écrit sur la sortie d'erreur ce que l'image a coûté, chaque seconde où "
                     "cela change."));
  parser.addOption(stats);
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  // The GUI application comes later and alone; a console one only answers --help, --version
  // or a mistake, and exits.
  if (!parser.parse(arguments) || parser.isSet(help) || parser.isSet(version)) {
    QCoreApplication cli(argc, argv);
    parser.process(cli);
  }
  return {parser.isSet(stats)};
}

UpdaterSettings builtInUpdaterSettings() {
  return {ORLET_UPDATE_FEED_URL, ORLET_UPDATE_PUBLIC_KEY, ORLET_VERSION,
          linux_update::systemVersion()};
}

// A server without XInput 2 or XKB: no key of the session can be seen, so every shortcut is
// refused the way a key held by another program is.
class NoKeyboardHook final : public KeyboardHook {
 public:
  Subscription watch(Handler) override { return {}; }
  std::optional<Subscription> swallow(const std::set<std::string>&, std::int64_t) override {
    return std::nullopt;
  }
  Subscription takeKeyboard() override { return {}; }
};

int fail(const std::string& why) {
  std::cerr << "orlet: " << why << '\n';
  return 1;
}

struct Adapters {
  std::unique_ptr<x11::XConnection> x;
  x11::XEventSource events;
  linux_qt::XcbEventFilter filter{events};
  linux_qt::QtScheduler scheduler;
  NotificationCenter notifications;
  linux_qt::QSettingsStore settings{std::cerr};
  MemoryDefaultsStore fallbackStore;
  UserDefaults defaults{settings.isUsable() ? static_cast<DefaultsStore&>(settings)
                                            : fallbackStore};
  x11::X11WindowServer windowServer{*x, events};
  x11::X11Workspace workspace{*x,
                              events,
                              scheduler,
                              x11::DesktopEntries::fromEnvironment(),
                              {instanceName, QCoreApplication::applicationName().toStdString()}};
  linux_qt::QtPanelFactory panels{*x, windowServer};
  linux_qt::QtStatusBar statusBar;
  linux_qt::QtApplication application;
  linux_capture::X11CaptureService capture{scheduler};
  x11::X11SyntheticInput input{*x, std::cerr, [this] { windowServer.forgetPointer(); }};
  x11::X11CursorSource cursor{*x, events, std::cerr};
  std::unique_ptr<linux_qt::MirrorContent> mirror;
  std::unique_ptr<KeyboardHook> keyboard{x11::X11KeyboardHook::create(*x, events)};
  linux_qt::QtSettingsPanelFactory settingsPanels{
      *x, []() -> ShortcutRecorderManager& { return ShortcutRecorderManager::shared(); }};
  linux_update::LinuxUpdates updates{scheduler, defaults, builtInUpdaterSettings()};

  explicit Adapters(std::unique_ptr<x11::XConnection> connection)
      : x(std::move(connection)), events(x->xinputOpcode()) {
    if (!keyboard) keyboard = std::make_unique<NoKeyboardHook>();
  }
};

// The shared controllers are built on first use from the adapters, and go before them: they
// hold panels, which need the adapters and the QApplication.
struct Controllers {
  explicit Controllers(Adapters& a) {
    SharedInstance<WindowController>::setFactory([&a] {
      return std::make_unique<WindowController>(WindowController::Ports{
          a.panels, a.workspace, a.windowServer, a.scheduler, a.notifications, a.defaults});
    });
    SharedInstance<HotkeyManager>::setFactory([&a] {
      return std::make_unique<HotkeyManager>(
          HotkeyManager::Ports{*a.keyboard, a.defaults, a.scheduler, a.notifications, std::cout});
    });
    SharedInstance<ShortcutRecorderManager>::setFactory([&a] {
      return std::make_unique<ShortcutRecorderManager>(ShortcutRecorderManager::Ports{
          *a.keyboard, a.defaults, a.scheduler, HotkeyManager::shared()});
    });
    SharedInstance<SettingsWindowController>::setFactory([&a] {
      return std::make_unique<SettingsWindowController>(SettingsWindowController::Ports{
          a.settingsPanels, a.scheduler, a.workspace, ShortcutRecorderManager::shared()});
    });
    SharedInstance<UpdateManager>::setFactory([&a] { return a.updates.makeManager(); });
  }
  ~Controllers() {
    SharedInstance<UpdateManager>::reset();
    SharedInstance<SettingsWindowController>::reset();
    SharedInstance<ShortcutRecorderManager>::reset();
    SharedInstance<HotkeyManager>::reset();
    SharedInstance<WindowController>::reset();
  }
  Controllers(const Controllers&) = delete;
  Controllers& operator=(const Controllers&) = delete;
};

// A second ORLET on the same screen would show a second button and mirror and write the same
// settings file: it leaves the screen to the one already there.
std::string alreadyRunning(const x11::InstanceLock::Holder& holder) {
  const char* display = std::getenv("DISPLAY");
  std::string text = "ORLET is already running on display " + std::string(display ? display : "");
  if (holder.pid) text += " (process " + std::to_string(*holder.pid) + ")";
  return text + "; this one quits";
}

// After an update the new ORLET starts while the old one is still quitting: it waits for that
// one (named by ORLET_REPLACES, which the relaunch sets) to let go of the screen.
std::unique_ptr<x11::InstanceLock> acquireScreen(const x11::XConnection& x,
                                                 x11::InstanceLock::Holder& holder) {
  const char* replaces = std::getenv("ORLET_REPLACES");
  const pid_t predecessor = replaces ? static_cast<pid_t>(std::atol(replaces)) : 0;
  unsetenv("ORLET_REPLACES");  // not for the programs ORLET starts
  if (predecessor <= 0) return x11::InstanceLock::acquire(x, &holder);
  return x11::InstanceLock::acquireAfter(x, predecessor, std::chrono::seconds(10), &holder, [=] {
    std::cerr << "orlet: waiting for ORLET (process " << predecessor << ") to quit" << std::endl;
  });
}

int run(QApplication& qt, int screen, const Options& options) {
  auto* native = qt.nativeInterface<QNativeInterface::QX11Application>();
  auto x = native ? x11::XConnection::borrow(native->connection(), screen) : nullptr;
  if (!x) return fail("no X display (the X connection cannot be used)");
  x11::InstanceLock::Holder holder;
  const auto instance = acquireScreen(*x, holder);
  if (!instance) return fail(alreadyRunning(holder));
  Adapters adapters(std::move(x));
  qt.installNativeEventFilter(&adapters.filter);
  const auto isWindowVisible = [] { return WindowController::shared().isWindowVisible(); };
  adapters.mirror = std::make_unique<linux_qt::MirrorContent>(linux_qt::MirrorContent::Ports{
      *adapters.x, adapters.scheduler, adapters.notifications, adapters.capture, isWindowVisible,
      std::cerr, adapters.input, std::cout});
  adapters.mirror->setMirrorDecorator(
      [&adapters, isWindowVisible](linux_qt::DisplayPreviewView& view, DisplayManager& dm) {
        linux_qt::makeMirrorInteractive(
            view, dm,
            {adapters.scheduler, adapters.cursor, adapters.windowServer, adapters.input,
             adapters.workspace, adapters.mirror->displayInfo(), isWindowVisible,
             [] { return WindowController::shared().isWindowBeingMoved(); }});
      });
  adapters.panels.setMirrorContent([&adapters] { return adapters.mirror->makeView(); });
  Controllers controllers(adapters);
  MainApp app({adapters.panels, adapters.statusBar, adapters.application, adapters.workspace,
               adapters.windowServer, adapters.scheduler, adapters.notifications,
               adapters.defaults});
  // The diagnostic option: what the picture costs, reported once a second.
  if (options.stats) linux_qt::startStatsReport(&qt, std::cerr);
  try {
    app.start();
  } catch (const std::exception& error) {
    return fail(std::string("cannot start: ") + error.what());
  }
  QTimer::singleShot(confirmedAfterMs, &qt, [] {
    linux_update::pruneReplacedVersion(linux_update::locateThisInstall(), "/proc/self/exe");
  });
  return qt.exec();
}

}  // namespace

int main(int argc, char** argv) {
#if defined(__GLIBC__)
  // Pictures are allocated and freed each time a view opens or closes; glibc would otherwise
  // raise its mapping threshold after the first free and serve the next ones from a heap that it
  // seldom gives back, so memory would creep up with every change of view.
  mallopt(M_MMAP_THRESHOLD, 256 * 1024);
#endif
  const Options options = parseOptions(argc, argv);
  const auto probe = x11::probeDisplay();
  if (!probe.reachable) return fail("no X display (" + probe.problem + ")");
  // A Wayland session with XWayland: only the X11 backend can see other applications' windows.
  setenv("QT_QPA_PLATFORM", "xcb", 1);
  setenv("RESOURCE_NAME", instanceName, 1);
  Q_INIT_RESOURCE(orlet);
  QApplication qt(argc, argv);
  QGuiApplication::setQuitOnLastWindowClosed(false);
  if (QGuiApplication::platformName() != QLatin1String("xcb")) {
    return fail("no X display (Qt runs on \"" + QGuiApplication::platformName().toStdString() +
                "\", ORLET needs X11)");
  }
  return run(qt, probe.screen, options);
}
