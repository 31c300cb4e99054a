#include "linux/wayland/WlrWorkspace.h"

#include <algorithm>
#include <set>

#include "wlr-foreign-toplevel-management-unstable-v1-client.h"

namespace orlet::wayland {

// One window; what the compositor says arrives in pieces and counts once it says "done".
struct WlrWorkspace::Toplevel {
  WlrWorkspace* owner = nullptr;
  zwlr_foreign_toplevel_handle_v1* handle = nullptr;
  std::string appId, pendingAppId;
  bool activated = false, pendingActivated = false;
  std::uint64_t sequence = 0;  // in the order the compositor showed them
};

namespace {

using Toplevel = WlrWorkspace::Toplevel;

Toplevel& of(void* data) {
  return *static_cast<Toplevel*>(data);
}

void title(void*, zwlr_foreign_toplevel_handle_v1*, const char*) {}
void appId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* id) {
  of(data).pendingAppId = id;
}
void outputEnter(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
void outputLeave(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
void state(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
  bool activated = false;
  const auto* begin = static_cast<const std::uint32_t*>(states->data);
  for (std::size_t i = 0; i < states->size / sizeof(std::uint32_t); ++i) {
    if (begin[i] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) activated = true;
  }
  of(data).pendingActivated = activated;
}
void parent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}

}  // namespace

// The listeners reach the workspace through each toplevel's owner pointer.
struct ToplevelEvents {
  static void done(void* data, zwlr_foreign_toplevel_handle_v1*);
  static void closed(void* data, zwlr_foreign_toplevel_handle_v1*);
  static void toplevel(void* data, zwlr_foreign_toplevel_manager_v1*,
                       zwlr_foreign_toplevel_handle_v1* handle);
  static void finished(void*, zwlr_foreign_toplevel_manager_v1*) {}
};

namespace {

const zwlr_foreign_toplevel_handle_v1_listener handleListener{
    title, appId, outputEnter, outputLeave, state, ToplevelEvents::done, ToplevelEvents::closed,
    parent};
const zwlr_foreign_toplevel_manager_v1_listener managerListener{ToplevelEvents::toplevel,
                                                                ToplevelEvents::finished};

}  // namespace

WlrWorkspace::WlrWorkspace(WaylandConnection& connection, Scheduler& scheduler,
                           x11::DesktopEntries entries, std::string ownAppId)
    : connection_(connection),
      manager_(static_cast<zwlr_foreign_toplevel_manager_v1*>(
          connection.bind(zwlr_foreign_toplevel_manager_v1_interface, 3))),
      scheduler_(scheduler),
      entries_(std::move(entries)),
      ownAppId_(std::move(ownAppId)) {
  if (!isAvailable()) return;
  zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &managerListener, this);
  connection_.roundtrip();  // the windows there are now
  activeAppId_ = activeToplevel() ? std::optional(activeToplevel()->appId) : std::nullopt;
}

WlrWorkspace::~WlrWorkspace() {
  for (auto& toplevel : toplevels_) zwlr_foreign_toplevel_handle_v1_destroy(toplevel->handle);
  if (manager_) zwlr_foreign_toplevel_manager_v1_destroy(manager_);
}

void ToplevelEvents::toplevel(void* data, zwlr_foreign_toplevel_manager_v1*,
                              zwlr_foreign_toplevel_handle_v1* handle) {
  auto& workspace = *static_cast<WlrWorkspace*>(data);
  auto toplevel = std::make_unique<WlrWorkspace::Toplevel>();
  toplevel->owner = &workspace;
  toplevel->handle = handle;
  toplevel->sequence = workspace.shown_++;
  zwlr_foreign_toplevel_handle_v1_add_listener(handle, &handleListener, toplevel.get());
  workspace.toplevels_.push_back(std::move(toplevel));
}

void ToplevelEvents::done(void* data, zwlr_foreign_toplevel_handle_v1*) {
  auto& toplevel = of(data);
  toplevel.appId = toplevel.pendingAppId;
  toplevel.activated = toplevel.pendingActivated;
  toplevel.owner->toplevelChanged(toplevel);
}

void ToplevelEvents::closed(void* data, zwlr_foreign_toplevel_handle_v1*) {
  auto& toplevel = of(data);
  auto* owner = toplevel.owner;
  zwlr_foreign_toplevel_handle_v1_destroy(toplevel.handle);
  std::erase_if(owner->toplevels_, [&toplevel](const auto& t) { return t.get() == &toplevel; });
  owner->activeMayHaveChanged();
}

// The activated window moves to the front of the list, which thus runs from the most recently
// activated to the least.
void WlrWorkspace::toplevelChanged(Toplevel& toplevel) {
  if (toplevel.activated) {
    const auto it =
        std::ranges::find_if(toplevels_, [&](const auto& t) { return t.get() == &toplevel; });
    std::rotate(toplevels_.begin(), it, it + 1);
  }
  activeMayHaveChanged();
}

const WlrWorkspace::Toplevel* WlrWorkspace::activeToplevel() const {
  const auto it = std::ranges::find_if(toplevels_, [](const auto& t) { return t->activated; });
  return it == toplevels_.end() ? nullptr : it->get();
}

// Focus moving between two windows of one application is not an activation, and neither is the
// moment between the old window's deactivation and the new one's activation.
void WlrWorkspace::activeMayHaveChanged() {
  const auto* active = activeToplevel();
  if (!active) {
    if (!activeAppId_ || noActiveWindowCheck_.isValid()) return;
    noActiveWindowCheck_ = scheduler_.after(noActiveWindowDelay, [this] {
      noActiveWindowCheck_ = {};
      if (activeToplevel()) return;
      activeAppId_.reset();
      activationHandlers_.call();
    });
    return;
  }
  noActiveWindowCheck_ = {};
  if (activeAppId_ == active->appId) return;
  activeAppId_ = active->appId;
  activationHandlers_.call();
}

RunningApplication WlrWorkspace::applicationOf(const std::string& appId) const {
  RunningApplication app;
  app.bundleIdentifier = appId;
  if (const auto entry = entries_.find(appId, appId)) {
    app.localizedName = entry->name;
  } else if (!appId.empty()) {
    app.localizedName = appId;
  }
  return app;
}

std::optional<RunningApplication> WlrWorkspace::frontmostApplication() const {
  const auto* active = activeToplevel();
  if (!active) return std::nullopt;
  return applicationOf(active->appId);
}

// In the order the compositor first showed their windows.
std::vector<RunningApplication> WlrWorkspace::runningApplications() const {
  std::vector<const Toplevel*> byAge;
  for (const auto& t : toplevels_) byAge.push_back(t.get());
  std::ranges::sort(byAge, {}, &Toplevel::sequence);
  std::vector<RunningApplication> apps;
  std::set<std::string> seen;
  for (const auto* t : byAge) {
    if (seen.insert(t->appId).second) apps.push_back(applicationOf(t->appId));
  }
  return apps;
}

std::vector<InstalledApplication> WlrWorkspace::installedApplications() const {
  return x11::installedFrom(entries_);
}

// The application's most recently activated window; nothing when it is already in front, lest
// the compositor raise it over our panels again.
void WlrWorkspace::activate(const RunningApplication& app) {
  if (!isAvailable() || !app.bundleIdentifier || !connection_.seat()) return;
  if (const auto* active = activeToplevel(); active && active->appId == *app.bundleIdentifier) {
    return;
  }
  const auto it = std::ranges::find_if(
      toplevels_, [&](const auto& t) { return t->appId == *app.bundleIdentifier; });
  if (it == toplevels_.end()) return;
  zwlr_foreign_toplevel_handle_v1_activate((*it)->handle, connection_.seat());
  connection_.flush();
}

Subscription WlrWorkspace::observeDidActivateApplication(std::function<void()> handler) {
  return activationHandlers_.add(std::move(handler));
}

}  // namespace orlet::wayland
