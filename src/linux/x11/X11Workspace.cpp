#include "linux/x11/X11Workspace.h"

#include <algorithm>
#include <cstdlib>
#include <set>

namespace orlet::x11 {
namespace {

bool hasIdentity(const ClientIdentity& identity) {
  return identity.pid != 0 || !identity.className.empty() || !identity.instance.empty();
}

// Windows without _NET_WM_PID are grouped by WM_CLASS instead.
std::string keyOf(const ClientIdentity& identity) {
  if (identity.pid != 0) return "pid:" + std::to_string(identity.pid);
  return "class:" + identity.className + "/" + identity.instance;
}

}  // namespace

X11Workspace::X11Workspace(XConnection& x, XEventSource& events, Scheduler& scheduler,
                           DesktopEntries entries, OwnClass own)
    : x_(x),
      events_(events),
      scheduler_(scheduler),
      entries_(std::move(entries)),
      own_(std::move(own)) {
  selectRootProperties();
  activeKey_ = keyOf(activeWindow(x_));
  eventSubscription_ = events_.subscribe([this](const xcb_generic_event_t& e) { handle(e); });
}

// Adds PropertyChangeMask to what this connection already selects on the root: the event mask
// is per client, and the toolkit shares the connection.
void X11Workspace::selectRootProperties() {
  auto* attributes = xcb_get_window_attributes_reply(
      x_.get(), xcb_get_window_attributes(x_.get(), x_.root()), nullptr);
  std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  if (attributes) mask |= attributes->your_event_mask;
  std::free(attributes);
  xcb_change_window_attributes(x_.get(), x_.root(), XCB_CW_EVENT_MASK, &mask);
  x_.flush();
}

RunningApplication X11Workspace::applicationOf(const ClientIdentity& identity) const {
  RunningApplication app;
  app.processIdentifier = identity.pid;
  if (auto entry = entries_.find(identity.instance, identity.className)) {
    app.localizedName = entry->name;
    app.bundleIdentifier = entry->id;
    return app;
  }
  if (!identity.className.empty()) app.localizedName = identity.className;
  if (!identity.instance.empty()) app.bundleIdentifier = identity.instance;
  return app;
}

std::string X11Workspace::keyOf(xcb_window_t window) const {
  if (window == XCB_NONE) return {};
  const auto identities = readIdentities(x_, {window});
  return hasIdentity(identities.front()) ? x11::keyOf(identities.front()) : std::string();
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
  const auto active = activeWindow(x_);
  if (active == XCB_NONE) return std::nullopt;
  const auto identity = readIdentities(x_, {active}).front();
  if (!hasIdentity(identity)) return std::nullopt;  // closed since the property was read
  return applicationOf(identity);
}

// The desktop's own furniture (panels, docks, the desktop window) is no application the operator
// works in: an Xfce panel is not offered as the editor.
std::vector<RunningApplication> X11Workspace::runningApplications() const {
  std::vector<xcb_window_t> windows;
  for (const auto& w : readClientWindows(x_, clientList(x_))) {
    if (!w.desktopOrDock) windows.push_back(w.window);
  }
  std::vector<RunningApplication> apps;
  std::set<std::string> seen;
  for (const auto& identity : readIdentities(x_, windows)) {
    if (hasIdentity(identity) && seen.insert(x11::keyOf(identity)).second) {
      apps.push_back(applicationOf(identity));
    }
  }
  return apps;
}

std::vector<InstalledApplication> X11Workspace::installedApplications() const {
  return installedFrom(entries_);
}

// The application's frontmost window, preferring one the user can see now.
xcb_window_t X11Workspace::topWindowOf(const RunningApplication& app) const {
  auto stacking = clientListStacking(x_);
  if (!stacking) stacking = clientList(x_);
  std::reverse(stacking->begin(), stacking->end());
  std::vector<xcb_window_t> owned;
  for (const auto& identity : readIdentities(x_, *stacking)) {
    if (hasIdentity(identity) && applicationOf(identity) == app) owned.push_back(identity.window);
  }
  for (const auto& w : readClientWindows(x_, owned)) {
    if (isOnScreen(w)) return w.window;
  }
  return owned.empty() ? XCB_NONE : owned.front();
}

// EWMH _NET_ACTIVE_WINDOW with source indication 2: the request stands for the user's own
// action (a click on our panel), so the window manager does not treat it as focus stealing.
// An application that is already active is left alone: window managers raise the window again
// on every such request (openbox's client_present), which would bury our panels under it.
void X11Workspace::activate(const RunningApplication& app) {
  const auto active = activeWindow(x_);
  if (active != XCB_NONE) {
    const auto identity = readIdentities(x_, {active}).front();
    if (hasIdentity(identity) && applicationOf(identity) == app) return;
  }
  const auto window = topWindowOf(app);
  if (window == XCB_NONE) return;
  xcb_ewmh_request_change_active_window(&x_.ewmh(), x_.screenNumber(), window,
                                        XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER, events_.lastUserTime(),
                                        active);
  x_.flush();
}

std::optional<std::string> X11Workspace::mainBundleIdentifier() const {
  return applicationOf({XCB_NONE, 0, own_.instance, own_.className}).bundleIdentifier;
}

Subscription X11Workspace::observeDidActivateApplication(std::function<void()> handler) {
  return activationHandlers_.add(std::move(handler));
}

void X11Workspace::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
  const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (property.window == x_.root() && property.atom == x_.ewmh()._NET_ACTIVE_WINDOW) {
    activeWindowChanged();
  }
}

// Focus moving between two windows of one application is not an activation, and neither is
// the moment without an active window while the window manager moves focus from one to another.
void X11Workspace::activeWindowChanged() {
  auto key = keyOf(activeWindow(x_));
  if (key.empty()) {
    if (activeKey_.empty() || noActiveWindowCheck_.isValid()) return;
    noActiveWindowCheck_ = scheduler_.after(noActiveWindowDelay, [this] {
      noActiveWindowCheck_ = {};
      if (!keyOf(activeWindow(x_)).empty()) return;
      activeKey_.clear();
      activationHandlers_.call();
    });
    return;
  }
  noActiveWindowCheck_ = {};
  if (key == activeKey_) return;
  activeKey_ = std::move(key);
  activationHandlers_.call();
}

}  // namespace orlet::x11
