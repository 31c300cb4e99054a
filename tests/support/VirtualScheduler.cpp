#include "support/VirtualScheduler.h"

#include <algorithm>

namespace orlet::test {

void VirtualScheduler::async(std::function<void()> work) {
  std::lock_guard lock(inboxMutex_);
  inbox_.push_back(std::move(work));
}

WorkItem VirtualScheduler::after(Seconds delay, std::function<void()> work) {
  drainInbox();
  auto item = WorkItem::make();
  entries_.push_back(
      {now_ + std::max(delay, Seconds{0}), nextSequence_++, std::move(work), item, Seconds{0}});
  return item;
}

WorkItem VirtualScheduler::every(Seconds interval, std::function<void()> work) {
  drainInbox();
  auto item = WorkItem::make();
  entries_.push_back({now_ + interval, nextSequence_++, std::move(work), item, interval});
  return item;
}

void VirtualScheduler::drainInbox() {
  std::vector<std::function<void()>> pending;
  {
    std::lock_guard lock(inboxMutex_);
    pending.swap(inbox_);
  }
  for (auto& work : pending) {
    entries_.push_back({now_, nextSequence_++, std::move(work), WorkItem::make(), Seconds{0}});
  }
}

bool VirtualScheduler::popNextDue(Seconds limit, Entry& out) {
  drainInbox();
  std::erase_if(entries_, [](const Entry& e) { return e.item.isCancelled(); });
  auto next =
      std::min_element(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
        return a.due != b.due ? a.due < b.due : a.sequence < b.sequence;
      });
  if (next == entries_.end() || next->due > limit) return false;
  out = std::move(*next);
  entries_.erase(next);
  return true;
}

void VirtualScheduler::advance(Seconds duration) {
  const Seconds target = now_ + std::max(duration, Seconds{0});
  Entry entry;
  while (popNextDue(target, entry)) {
    now_ = std::max(now_, entry.due);
    if (entry.interval > Seconds{0}) {
      entries_.push_back(
          {entry.due + entry.interval, nextSequence_++, entry.work, entry.item, entry.interval});
    }
    entry.work();
  }
  now_ = target;
}

std::size_t VirtualScheduler::pendingCount() const {
  std::lock_guard lock(inboxMutex_);
  return inbox_.size() + std::count_if(entries_.begin(), entries_.end(),
                                       [](const Entry& e) { return !e.item.isCancelled(); });
}

}  // namespace orlet::test
