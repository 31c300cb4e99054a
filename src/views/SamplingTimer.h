#pragma once

#include <functional>

#include "foundation/Lifetime.h"
#include "foundation/Scheduler.h"
#include "foundation/Subscription.h"
#include "foundation/WorkItem.h"
#include "platform/WindowServer.h"

namespace orlet {

// A sampling timer paced by the pointer: `work` runs every `interval` while the pointer has had
// input within the last `stillAfter`, then only every `stillInterval`, and again at once and at
// the full rate at its next input. What is sampled (the pointer, the cursor, the mirror's place)
// changes with the user's hands, so a still pointer costs one wake-up a second instead of sixty,
// and a moving one loses no sample. A pointer moved with no input (another program's warp, which
// is rare) is seen within a second, as the window server's own readings promise. With a window
// server that cannot report input, the full rate holds throughout. Main thread only.
class SamplingTimer {
 public:
  static constexpr Seconds stillAfter{0.5};
  static constexpr Seconds stillInterval{1.0};

  SamplingTimer(Scheduler& scheduler, const WindowServer& pointer, Seconds interval,
                std::function<void()> work);

  // A second start neither restarts nor doubles the sampling.
  void start();
  void stop();
  bool isRunning() const { return timer_.isValid(); }
  // One sample on the next turn, whatever the rate (the news that something changed may come
  // from inside a reading of the server); none if stopped meanwhile.
  void sampleSoon();

 private:
  void sampleAt(bool still);
  void tick();
  void pointerHadInput();

  Scheduler& scheduler_;
  const WindowServer& pointer_;
  const Seconds interval_;
  std::function<void()> work_;
  Seconds lastInput_{0};
  bool still_ = false;
  ScopedWorkItem timer_;
  Subscription input_;
  Lifetime lifetime_;
};

}  // namespace orlet
