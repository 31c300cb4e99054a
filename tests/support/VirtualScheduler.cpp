#include "support/VirtualScheduler.h"

namespace orlet::test {

void VirtualScheduler::async(std::function<void()> work) {
  std::lock_guard lock(inboxMutex_);
  inbox_.push_back(std::move(work));
}

WorkItem VirtualScheduler::add(Seconds due, Seconds interval, std::function<void()> work,
                               WorkItem item) {
  drainInbox();
  entries_.emplace(std::pair(due, sequence_++), Entry{std::move(work), item, interval});
  return item;
}

void VirtualScheduler::drainInbox() {
  std::vector<std::function<void()>> pending;
  {
    std::lock_guard lock(inboxMutex_);
    pending.swap(inbox_);
  }
  for (auto& work : pending) {
    entries_.emplace(std::pair(now_, sequence_++), Entry{std::move(work), WorkItem::make(), {}});
  }
}

void VirtualScheduler::advance(Seconds duration) {
  const Seconds target = now_ + std::max(duration, Seconds{0});
  for (drainInbox(); !entries_.empty() && entries_.begin()->first.first <= target; drainInbox()) {
    auto next = entries_.extract(entries_.begin());
    const Seconds due = next.key().first;
    const Entry& entry = next.mapped();
    if (entry.item.isCancelled()) continue;
    now_ = std::max(now_, due);
    if (entry.interval > Seconds{0})
      add(due + entry.interval, entry.interval, entry.work, entry.item);
    entry.work();
  }
  now_ = target;
}

}  // namespace orlet::test
