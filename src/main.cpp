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
#include <optional>
#include <sstream>
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
#include "linux/qt/ToggleChannel.h"
#include "linux/qt/XcbEventFilter.h"
#include "linux/qt/views/MirrorContent.h"
#include "linux/qt/views/MirrorInteraction.h"
#include "linux/update/InstallLocation.h"
#include "linux/update/LinuxUpdates.h"
#include "linux/x11/DisplayProbe.h"
#include "linux/x11/InstalledApplicationsOnly.h"
#include "linux/x11/InstanceLock.h"
#include "linux/x11/X11CursorSource.h"
#include "linux/x11/X11KeyboardHook.h"
#include "linux/x11/X11SyntheticInput.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Workspace.h"
#include "settings/EditorChoice.h"
#include "settings/HotkeyManager.h"
#include "settings/SettingsWindowController.h"
#include "settings/ShortcutRecorderManager.h"
#include "update/UpdaterSettings.h"
#include "window/CaptureOneFocus.h"
#include "window/EditorTexts.h"
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

// `orlet --toggle`: the running ORLET toggles its mirror; this process only asks.
[[noreturn]] void askTheRunningOrletToToggle(int argc, char** argv) {
  QCoreApplication cli(argc, argv);
  std::string error;
  if (linux_qt::ToggleChannel::request(error)) std::exit(0);
  std::cerr << "orlet: " << error << '\n';
  std::exit(1);
}

// The editor the help names: the one chosen, else one of the known editors installed. Which of
// them runs cannot be known without a display.
std::optional<std::string> editorNameWithoutDisplay() {
  std::ostringstream ignored;
  linux_qt::QSettingsStore settings{ignored};
  MemoryDefaultsStore empty;
  UserDefaults defaults{settings.isUsable() ? static_cast<DefaultsStore&>(settings) : empty};
  const EditorChoice choice(defaults);
  x11::InstalledApplicationsOnly workspace(x11::DesktopEntries::fromEnvironment());
  return CaptureOneFocus(workspace, choice).editorName();
}

std::string lowercaseFirst(std::string text) {
  if (!text.empty()) text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  return text;
}

std::string helpText() {
  return "Utilisation : orlet [--stats | --toggle]\n"
         "ORLET : " +
         lowercaseFirst(editor_texts::description(editorNameWithoutDisplay())) +
         ".\n\n"
         "Options :\n"
         "  -h, --help     Affiche cette aide et quitte.\n"
         "  -v, --version  Affiche la version et quitte.\n"
         "  --stats        Écrit sur la sortie d'erreur ce que l'image a coûté, chaque seconde où\n"
         "                 cela change.\n"
         "  --toggle       Montre ou cache le miroir de l'ORLET lancé, comme le raccourci, et\n"
         "                 quitte.\n";
}

// The command line, read before anything needs a display: --help and --version answer and
// exit, an unknown option is an error. Qt's own help and errors would be English.
Options parseOptions(int argc, char** argv) {
  QCommandLineParser parser;
  const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
  const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
  const QCommandLineOption stats(QStringLiteral("stats"));
  const QCommandLineOption toggle(QStringLiteral("toggle"));
  parser.addOptions({help, version, stats, toggle});
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  if (!parser.parse(arguments)) {
    const auto unknown = parser.unknownOptionNames();
    std::cerr << "orlet: "
              << (unknown.isEmpty() ? std::string("arguments incompris")
                                    : "option inconnue : " +
                                          std::string(unknown.front().size() > 1 ? "--" : "-") +
                                          unknown.front().toStdString())
              << "\nVoir « orlet --help ».\n";
    std::exit(1);
  }
  if (parser.isSet(help)) {
    std::cout << helpText();
    std::exit(0);
  }
  if (parser.isSet(version)) {
    std::cout << "orlet " << ORLET_VERSION << '\n';
    std::exit(0);
  }
  if (parser.isSet(toggle)) askTheRunningOrletToToggle(argc, argv);
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
  EditorChoice editorChoice{defaults};
  CaptureOneFocus editor{workspace, editorChoice};
  linux_qt::QtPanelFactory panels{*x, windowServer};
  linux_qt::QtStatusBar statusBar;
  linux_qt::QtApplication application;
  linux_capture::X11CaptureService capture{scheduler};
  x11::X11SyntheticInput input{*x, std::cerr, [this] { windowServer.forgetPointer(); }};
  x11::X11CursorSource cursor{*x, events, std::cerr};
  std::unique_ptr<linux_qt::MirrorContent> mirror;
  std::unique_ptr<KeyboardHook> keyboard{x11::X11KeyboardHook::create(*x, events)};
  Subscription editorDescription;
  linux_qt::QtSettingsPanelFactory settingsPanels{
      *x, []() -> ShortcutRecorderManager& { return ShortcutRecorderManager::shared(); }, editor,
      editorChoice};
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
          a.panels, a.editor, a.windowServer, a.scheduler, a.notifications, a.defaults});
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
          a.settingsPanels, a.scheduler, a.editor, ShortcutRecorderManager::shared()});
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
  std::string text = "ORLET est déjà lancé sur l'écran " + std::string(display ? display : "");
  if (holder.pid) text += " (processus " + std::to_string(*holder.pid) + ")";
  return text + " ; celui-ci se ferme";
}

// The session's start-up entry says what ORLET is beside: the editor chosen or found now.
void describeInAutostart(Adapters& a) {
  auto describe = [&a] {
    a.settingsPanels.autostart().setComment(editor_texts::description(a.editor.editorName()));
  };
  describe();
  a.editorDescription = a.editorChoice.observe(describe);
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
    std::cerr << "orlet: attente de la fin de l'ORLET remplacé (processus " << predecessor << ")"
              << std::endl;
  });
}

int run(QApplication& qt, int screen, const Options& options) {
  auto* native = qt.nativeInterface<QNativeInterface::QX11Application>();
  auto x = native ? x11::XConnection::borrow(native->connection(), screen) : nullptr;
  if (!x) return fail("aucun écran X (la connexion X est inutilisable)");
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
             adapters.editor, adapters.mirror->displayInfo(), isWindowVisible,
             [] { return WindowController::shared().isWindowBeingMoved(); }});
      });
  adapters.panels.setMirrorContent([&adapters] { return adapters.mirror->makeView(); });
  Controllers controllers(adapters);
  describeInAutostart(adapters);
  MainApp app({adapters.panels, adapters.statusBar, adapters.application, adapters.editor,
               adapters.windowServer, adapters.scheduler, adapters.notifications,
               adapters.defaults});
  // The diagnostic option: what the picture costs, reported once a second.
  if (options.stats) linux_qt::startStatsReport(&qt, std::cerr);
  try {
    app.start();
  } catch (const std::exception& error) {
    return fail(std::string("démarrage impossible : ") + error.what());
  }
  std::string channelError;
  const auto toggleChannel = linux_qt::ToggleChannel::listen(
      [&adapters] { adapters.notifications.post(notification::hotkeyPressed); }, channelError);
  if (!toggleChannel) {
    std::cerr << "orlet: « orlet --toggle » ne pourra pas joindre ORLET (" << channelError << ")\n";
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
  if (!probe.reachable) return fail("aucun écran X (" + probe.problem + ")");
  // A Wayland session with XWayland: only the X11 backend can see other applications' windows.
  setenv("QT_QPA_PLATFORM", "xcb", 1);
  setenv("RESOURCE_NAME", instanceName, 1);
  Q_INIT_RESOURCE(orlet);
  QApplication qt(argc, argv);
  QGuiApplication::setQuitOnLastWindowClosed(false);
  if (QGuiApplication::platformName() != QLatin1String("xcb")) {
    return fail("aucun écran X (Qt fonctionne sur « " +
                QGuiApplication::platformName().toStdString() + " », ORLET a besoin de X11)");
  }
  return run(qt, probe.screen, options);
}
