#include "settings/EditorOptions.h"

#include <algorithm>

#include "window/TextCase.h"

namespace orlet {
namespace {

bool isPhotoApplication(const InstalledApplication& app) {
  return std::ranges::any_of(app.categories, [](const std::string& category) {
    return category == "Graphics" || category == "Photography";
  });
}

bool contains(const std::vector<EditorOption>& options, const std::string& name) {
  const auto wanted = lowercased(name);
  return std::ranges::any_of(
      options, [&wanted](const EditorOption& o) { return lowercased(o.name) == wanted; });
}

// ORLET's own launcher is among the photo applications too.
std::vector<EditorOption> photoApplications(const std::vector<InstalledApplication>& installed,
                                            const std::optional<std::string>& ours) {
  std::vector<EditorOption> options;
  for (const auto& app : installed) {
    if (app.identifier == ours || !isPhotoApplication(app) || contains(options, app.name)) continue;
    options.push_back({app.name, app.iconName});
  }
  std::ranges::sort(options, [](const EditorOption& a, const EditorOption& b) {
    return lowercased(a.name) < lowercased(b.name);
  });
  return options;
}

std::string iconOf(const std::vector<InstalledApplication>& installed, const std::string& name) {
  const auto it = std::ranges::find(installed, name, &InstalledApplication::name);
  return it == installed.end() ? std::string() : it->iconName;
}

}  // namespace

std::vector<EditorOption> editorOptions(const Workspace& workspace, const EditorRule& rule) {
  const auto installed = workspace.installedApplications();
  const auto ours = workspace.mainBundleIdentifier();
  auto options = photoApplications(installed, ours);
  for (const auto& app : workspace.runningApplications()) {
    if (!app.localizedName || app.localizedName->empty() || app.bundleIdentifier == ours) continue;
    if (!contains(options, *app.localizedName))
      options.push_back({*app.localizedName, iconOf(installed, *app.localizedName)});
  }
  if (!rule.isAutomatic() && !contains(options, rule.chosenName())) {
    options.push_back({rule.chosenName(), {}});
  }
  return options;
}

}  // namespace orlet
