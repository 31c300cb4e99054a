#pragma once

#include <functional>
#include <vector>

#include "foundation/Scheduler.h"
#include "platform/ScreenCapturePermission.h"

namespace orlet::test {

// A permission whose grant the test sets; a request shows a "prompt" that stays open until the
// test answers it, and the answer arrives on a later turn, as the system's would.
class FakeScreenCapturePermission final : public ScreenCapturePermission {
 public:
  explicit FakeScreenCapturePermission(Scheduler& scheduler) : scheduler_(scheduler) {}

  bool granted = false;
  bool settingsOpen = false;

  bool preflight() override { return granted; }
  void request(std::function<void(bool)> completion) override {
    prompts_.push_back(std::move(completion));
  }
  void openSettings() override { settingsOpen = true; }

  std::size_t openPrompts() const { return prompts_.size(); }
  // The user answers every open prompt.
  void answer(bool grant) {
    granted = grant;
    for (auto& completion : std::exchange(prompts_, {})) {
      scheduler_.async([completion = std::move(completion), grant] { completion(grant); });
    }
  }

 private:
  Scheduler& scheduler_;
  std::vector<std::function<void(bool)>> prompts_;
};

}  // namespace orlet::test
