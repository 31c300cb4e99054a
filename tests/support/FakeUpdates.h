#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/HttpClient.h"
#include "platform/UpdateInstaller.h"
#include "platform/UpdateUserDriver.h"

namespace orlet::test {

// A web server in memory: answers are given by the test, each when it chooses.
class FakeHttpClient final : public HttpClient {
 public:
  struct Pending {
    std::string url;
    std::uint64_t maxBytes;
    Progress progress;
    std::function<void(HttpResult)> done;
    bool cancelled = false;
  };

  Subscription get(const std::string& url, std::uint64_t maxBytes, Progress progress,
                   std::function<void(HttpResult)> done) override {
    requests.push_back({url, maxBytes, std::move(progress), std::move(done)});
    const std::size_t index = requests.size() - 1;
    return Subscription([this, index] { requests[index].cancelled = true; });
  }

  // Completes the latest request.
  void answer(std::string body, std::string error = {}) {
    auto& r = requests.back();
    if (!r.cancelled) r.done({std::move(body), std::move(error)});
  }

  std::vector<Pending> requests;
};

// The update window: remembers what it shows and presses its buttons.
class FakeUpdateDriver final : public UpdateUserDriver {
 public:
  void show(const UpdateScreen& s, std::function<void()> p, std::function<void()> q) override {
    screen = s;
    visible = true;
    primary = std::move(p);
    secondary = std::move(q);
    steps.push_back(s.step);
  }
  void dismiss() override { visible = false; }

  void press(const std::string& title) {
    if (screen.primaryButton == title && primary) return primary();
    if (screen.secondaryButton == title && secondary) return secondary();
    throw std::runtime_error("no button \"" + title + "\" on \"" + screen.title + "\"");
  }

  UpdateScreen screen;
  bool visible = false;
  std::vector<UpdateScreen::Step> steps;
  std::function<void()> primary, secondary;
};

// An installation on disk, as a record of what was put in place.
class FakeInstaller final : public UpdateInstaller {
 public:
  std::string archiveType() const override { return type; }
  bool installsItself() const override { return !fromSystem; }
  void install(std::string_view archive, const std::string& version,
               std::function<void(std::optional<std::string>)> done) override {
    installed = {std::string(archive), version};
    done(failure);
  }
  void relaunch() override { relaunched = true; }

  std::string type = "application/gzip";
  bool fromSystem = false;
  std::optional<std::string> failure;
  std::optional<std::pair<std::string, std::string>> installed;  // bytes, version
  bool relaunched = false;
};

}  // namespace orlet::test
