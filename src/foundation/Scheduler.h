#pragma once

#include <chrono>
#include <functional>

#include "foundation/WorkItem.h"

namespace orlet {

using Seconds = std::chrono::duration<double>;

// The main queue. Everything the logic does runs on the main thread through it; in the app it
// is the Qt event loop, in tests a virtual clock that the test advances.
class Scheduler {
 public:
  virtual ~Scheduler() = default;

  // Monotonic time since an arbitrary start.
  virtual Seconds now() const = 0;

  // Runs `work` on the main thread at a later turn of the loop, after work already queued.
  // The only member that may be called from any thread.
  virtual void async(std::function<void()> work) = 0;

  // Runs `work` once on the main thread after `delay`, unless the item is cancelled first.
  virtual WorkItem after(Seconds delay, std::function<void()> work) = 0;

  // Runs `work` on the main thread every `interval`, first after one interval, until cancelled.
  virtual WorkItem every(Seconds interval, std::function<void()> work) = 0;
};

}  // namespace orlet
