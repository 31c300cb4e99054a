#include "views/SamplingTimer.h"

namespace orlet {

SamplingTimer::SamplingTimer(Scheduler& scheduler, const WindowServer& pointer, Seconds interval,
                             std::function<void()> work)
    : scheduler_(scheduler), pointer_(pointer), interval_(interval), work_(std::move(work)) {}

void SamplingTimer::start() {
  if (isRunning()) return;
  lastInput_ = scheduler_.now();
  input_ = pointer_.observePointerInput(lifetime_.guard([this] { pointerHadInput(); }));
  sampleAt(false);
}

void SamplingTimer::stop() {
  timer_ = ScopedWorkItem();
  input_ = Subscription();
}

void SamplingTimer::sampleAt(bool still) {
  still_ = still;
  timer_ = scheduler_.every(still ? stillInterval : interval_, lifetime_.guard([this] { tick(); }));
}

void SamplingTimer::tick() {
  work_();
  // To the nearest sample: the clock's rounding must not decide which tick is the last fast one.
  if (!still_ && isRunning() && pointer_.reportsPointerInput() &&
      scheduler_.now() - lastInput_ + interval_ / 2 >= stillAfter) {
    sampleAt(true);
  }
}

void SamplingTimer::pointerHadInput() {
  lastInput_ = scheduler_.now();
  if (!still_ || !isRunning()) return;
  sampleAt(false);
  sampleSoon();
}

void SamplingTimer::sampleSoon() {
  scheduler_.async(lifetime_.guard([this] {
    if (isRunning()) work_();
  }));
}

}  // namespace orlet
