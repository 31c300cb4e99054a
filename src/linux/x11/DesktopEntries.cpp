#include "linux/x11/DesktopEntries.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>

namespace orlet::x11 {
namespace fs = std::filesystem;
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::vector<fs::path> splitPaths(const std::string& list) {
  std::vector<fs::path> paths;
  std::size_t start = 0;
  while (start <= list.size()) {
    const auto end = std::min(list.find(':', start), list.size());
    if (end > start) paths.emplace_back(list.substr(start, end - start));
    start = end + 1;
  }
  return paths;
}

std::string lowercase(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return s;
}

bool equalsIgnoringCase(const std::string& a, const std::string& b) {
  return !a.empty() && lowercase(a) == lowercase(b);
}

std::string trimmed(const std::string& s) {
  const auto first = s.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

// The escapes of desktop-entry string values: \s \n \t \r \\.
std::string unescape(const std::string& value) {
  std::string out;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      out += value[i];
      continue;
    }
    const char c = value[++i];
    out += c == 's' ? ' ' : c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
  }
  return out;
}

// The keys a translation may carry for `locale`, best first ("Name[fr_FR]", "Name[fr]").
std::vector<std::string> localisedKeys(const std::string& key, std::string locale) {
  locale = locale.substr(0, locale.find_first_of(".@"));
  std::vector<std::string> keys;
  if (locale.empty() || locale == "C" || locale == "POSIX") return keys;
  keys.push_back(key + "[" + locale + "]");
  if (const auto underscore = locale.find('_'); underscore != std::string::npos) {
    keys.push_back(key + "[" + locale.substr(0, underscore) + "]");
  }
  return keys;
}

// A list value: "Graphics;Photography;".
std::vector<std::string> splitList(const std::string& value) {
  std::vector<std::string> items;
  std::size_t start = 0;
  while (start < value.size()) {
    const auto end = std::min(value.find(';', start), value.size());
    if (end > start) items.push_back(value.substr(start, end - start));
    start = end + 1;
  }
  return items;
}

std::map<std::string, std::string> readMainGroup(std::istream& in) {
  std::map<std::string, std::string> values;
  std::string line;
  bool inMainGroup = false;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '[') {
      inMainGroup = line == "[Desktop Entry]";
      continue;
    }
    const auto equals = line.find('=');
    if (!inMainGroup || equals == std::string::npos) continue;
    values.emplace(trimmed(line.substr(0, equals)), unescape(trimmed(line.substr(equals + 1))));
  }
  return values;
}

std::string desktopId(const fs::path& file, const fs::path& applications) {
  auto id = fs::relative(file, applications).replace_extension().generic_string();
  std::replace(id.begin(), id.end(), '/', '-');
  return id;
}

std::string lastComponent(const std::string& id) {
  const auto dot = id.rfind('.');
  return dot == std::string::npos ? id : id.substr(dot + 1);
}

}  // namespace

DesktopEntries::DesktopEntries(std::vector<fs::path> dataDirs, std::string locale)
    : locale_(std::move(locale)) {
  for (auto& dir : dataDirs) applicationDirs_.push_back(dir / "applications");
}

DesktopEntries DesktopEntries::fromEnvironment() {
  std::vector<fs::path> dirs;
  auto home = environment("XDG_DATA_HOME");
  if (home.empty() && !environment("HOME").empty()) home = environment("HOME") + "/.local/share";
  if (!home.empty()) dirs.emplace_back(home);
  auto system = environment("XDG_DATA_DIRS");
  if (system.empty()) system = "/usr/local/share:/usr/share";
  for (auto& dir : splitPaths(system)) dirs.push_back(std::move(dir));
  std::string locale = environment("LC_ALL");
  if (locale.empty()) locale = environment("LC_MESSAGES");
  if (locale.empty()) locale = environment("LANG");
  return DesktopEntries(std::move(dirs), std::move(locale));
}

std::optional<DesktopEntry> DesktopEntries::parse(std::istream& in, const std::string& id,
                                                  const std::string& locale) {
  const auto values = readMainGroup(in);
  auto get = [&](const std::string& key) {
    auto it = values.find(key);
    return it == values.end() ? std::string() : it->second;
  };
  if (get("Type") != "Application" || get("Hidden") == "true") return std::nullopt;
  DesktopEntry entry{id,
                     get("Name"),
                     get("StartupWMClass"),
                     get("Icon"),
                     splitList(get("Categories")),
                     get("NoDisplay") != "true"};
  for (const auto& key : localisedKeys("Name", locale)) {
    if (auto translated = get(key); !translated.empty()) {
      entry.name = translated;
      break;
    }
  }
  if (entry.name.empty()) return std::nullopt;
  return entry;
}

const std::vector<DesktopEntry>& DesktopEntries::all() {
  if (!indexed_ || directoryTimes() != indexedTimes_) rebuild();
  return entries_;
}

std::optional<DesktopEntry> DesktopEntries::find(const std::string& instance,
                                                 const std::string& className) {
  all();
  for (const auto& e : entries_) {
    if (!e.startupWmClass.empty() &&
        (e.startupWmClass == className || e.startupWmClass == instance)) {
      return e;
    }
  }
  for (const auto& e : entries_) {
    for (const auto& key : {e.id, lastComponent(e.id)}) {
      if (equalsIgnoringCase(key, className) || equalsIgnoringCase(key, instance)) return e;
    }
  }
  return std::nullopt;
}

std::vector<fs::file_time_type> DesktopEntries::directoryTimes() const {
  std::vector<fs::file_time_type> times;
  for (const auto& dir : applicationDirs_) {
    std::error_code error;
    times.push_back(fs::last_write_time(dir, error));
  }
  return times;
}

void DesktopEntries::rebuild() {
  entries_.clear();
  indexedTimes_ = directoryTimes();
  indexed_ = true;
  std::set<std::string> seen;
  for (const auto& dir : applicationDirs_) {
    std::error_code error;
    for (fs::recursive_directory_iterator it(dir, error), end; !error && it != end;
         it.increment(error)) {
      if (it->path().extension() != ".desktop") continue;
      const auto id = desktopId(it->path(), dir);
      if (!seen.insert(id).second) continue;  // hidden by a directory of higher precedence
      std::ifstream in(it->path());
      if (auto entry = parse(in, id, locale_)) entries_.push_back(std::move(*entry));
    }
  }
}

std::vector<InstalledApplication> installedFrom(DesktopEntries& entries) {
  std::vector<InstalledApplication> apps;
  for (const auto& entry : entries.all()) {
    if (entry.shownInMenus) apps.push_back({entry.name, entry.id, entry.icon, entry.categories});
  }
  return apps;
}

}  // namespace orlet::x11
