#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Subscription.h"

namespace orlet {

using ProcessId = std::int32_t;

struct RunningApplication {
  std::optional<std::string> localizedName;     // as shown to the user; absent when unknown
  std::optional<std::string> bundleIdentifier;  // stable application identifier
  ProcessId processIdentifier = 0;              // 0 when unknown
  friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

// An application installed for the user, as its launcher entry describes it.
struct InstalledApplication {
  std::string name;        // as shown to the user, the same name a running copy reports
  std::string identifier;  // stable application identifier
  std::string iconName;    // an icon-theme name or an absolute file; empty when it has none
  std::vector<std::string> categories;  // e.g. "Graphics", "Photography"
  friend bool operator==(const InstalledApplication&, const InstalledApplication&) = default;
};

// The desktop's applications as the user sees them.
class Workspace {
 public:
  virtual ~Workspace() = default;

  // The application that owns the active window; nullopt when none is active.
  virtual std::optional<RunningApplication> frontmostApplication() const = 0;

  // Applications that own managed windows, in the desktop's own (stable) order.
  virtual std::vector<RunningApplication> runningApplications() const = 0;

  // The applications the user can start from the desktop's menus, in no particular order.
  virtual std::vector<InstalledApplication> installedApplications() const = 0;

  // Makes `app` the active application; does nothing if it has no window to activate.
  virtual void activate(const RunningApplication& app) = 0;

  // This program's own identifier, as frontmostApplication() would report it for us.
  virtual std::optional<std::string> mainBundleIdentifier() const = 0;

  // Calls `handler` on the main thread after another application became the active one.
  [[nodiscard]] virtual Subscription observeDidActivateApplication(
      std::function<void()> handler) = 0;
};

}  // namespace orlet
