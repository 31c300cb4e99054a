#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace orlet {

// Handle to work a Scheduler will run later. Copies share one state: cancelling any of them
// cancels the work. Cancelling is thread-safe; work already running is not interrupted.
class WorkItem {
 public:
  WorkItem() = default;

  void cancel() const {
    if (!state_) return;
    std::function<void()> onCancel;
    {
      std::lock_guard lock(state_->mutex);
      if (state_->cancelled.exchange(true)) return;
      onCancel = std::move(state_->onCancel);
    }
    if (onCancel) onCancel();
  }
  bool isCancelled() const { return state_ && state_->cancelled.load(); }
  bool isValid() const { return state_ != nullptr; }

  // For Scheduler implementations: a fresh item, and a hook that releases the
  // implementation's resources (a timer) when the item is cancelled.
  static WorkItem make() {
    WorkItem item;
    item.state_ = std::make_shared<State>();
    return item;
  }
  void setOnCancel(std::function<void()> onCancel) const {
    std::lock_guard lock(state_->mutex);
    if (!state_->cancelled) state_->onCancel = std::move(onCancel);
  }

 private:
  struct State {
    std::atomic<bool> cancelled{false};
    std::mutex mutex;
    std::function<void()> onCancel;
  };
  std::shared_ptr<State> state_;
};

// Owns a WorkItem and cancels it when destroyed or replaced, so deferred work never outlives
// the object that scheduled it.
class ScopedWorkItem {
 public:
  ScopedWorkItem() = default;
  ScopedWorkItem(WorkItem item) : item_(std::move(item)) {}  // NOLINT: implicit by design
  ScopedWorkItem(ScopedWorkItem&&) noexcept = default;
  ScopedWorkItem& operator=(ScopedWorkItem&& other) noexcept {
    if (this != &other) {
      item_.cancel();
      item_ = std::move(other.item_);
    }
    return *this;
  }
  ScopedWorkItem(const ScopedWorkItem&) = delete;
  ScopedWorkItem& operator=(const ScopedWorkItem&) = delete;
  ~ScopedWorkItem() { item_.cancel(); }

  const WorkItem& get() const { return item_; }
  void cancel() const { item_.cancel(); }
  bool isValid() const { return item_.isValid(); }

 private:
  WorkItem item_;
};

}  // namespace orlet
