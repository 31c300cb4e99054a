#include "linux/capture/SharedMemoryPool.h"

#include <sys/mman.h>

#include <algorithm>

namespace orlet::linux_capture {

std::shared_ptr<SharedMemoryPool> SharedMemoryPool::make(Scheduler& scheduler,
                                                         std::string displayName) {
  return std::shared_ptr<SharedMemoryPool>(new SharedMemoryPool(scheduler, std::move(displayName)));
}

// Closing the connection detaches every segment on the server's side.
SharedMemoryPool::~SharedMemoryPool() {
  for (const auto& block : idle_) munmap(block.address, block.size);
}

std::unique_ptr<SharedMemory> SharedMemoryPool::take(std::size_t size, std::string& error) {
  std::lock_guard lock(mutex_);
  dropBroken();
  const auto unused = std::find_if(idle_.rbegin(), idle_.rend(),
                                   [size](const Block& block) { return block.size == size; });
  if (unused != idle_.rend()) {
    const Block block = *unused;
    idle_.erase(std::next(unused).base());
    return lend(block);
  }
  if (!connection_) {
    connection_ = XcbConnection::open(displayName_.empty() ? nullptr : displayName_.c_str(), error);
    if (!connection_) return nullptr;
    ++connectionCount_;
  }
  void* address = nullptr;
  const auto segment = SharedMemory::attachNew(*connection_, size, address, error);
  if (!segment) return nullptr;
  return lend({*segment, address, size, {}, connectionCount_});
}

// The mapping is the loan: it comes back once its last owner, the reader or a frame still shown,
// lets go of it. A pool gone by then has closed its connection; only the mapping is left to end.
std::unique_ptr<SharedMemory> SharedMemoryPool::lend(const Block& block) {
  std::shared_ptr<void> mapping(block.address, [weak = weak_from_this(), block](void*) {
    if (auto pool = weak.lock()) {
      pool->giveBack(block);
    } else {
      munmap(block.address, block.size);
    }
  });
  return SharedMemory::borrowed(block.segment, std::move(mapping), block.size);
}

void SharedMemoryPool::giveBack(Block block) {
  // Unused memory leaves our resident set at once; the server keeps its own mapping, and with it
  // what makes the next read cheap.
  madvise(block.address, block.size, MADV_DONTNEED);
  {
    std::lock_guard lock(mutex_);
    if (!connection_ || connection_->hasError() || block.connection != connectionCount_) {
      munmap(block.address, block.size);
      return;
    }
    block.since = Clock::now();
    idle_.push_back(block);
    std::size_t idleBytes = 0;
    for (const auto& b : idle_) idleBytes += b.size;
    // The oldest go first.
    while (idleBytes > maxIdleBytes) {
      idleBytes -= idle_.front().size;
      release(idle_.front());
      idle_.erase(idle_.begin());
    }
  }
  scheduleTrim();
}

// One pending trim at a time, set from the main thread whichever thread gave memory back.
void SharedMemoryPool::scheduleTrim() {
  if (trimPending_.exchange(true)) return;
  scheduler_.async([weak = weak_from_this(), &scheduler = scheduler_] {
    scheduler.after(Seconds{double(keepFor.count()) + 0.5}, [weak] {
      auto pool = weak.lock();
      if (!pool) return;
      pool->trimPending_ = false;
      pool->trim(Clock::now());
      if (pool->idleCount() > 0) pool->scheduleTrim();
    });
  });
}

void SharedMemoryPool::trim(Clock::time_point now) {
  std::lock_guard lock(mutex_);
  std::erase_if(idle_, [&](const Block& block) {
    if (now - block.since < keepFor) return false;
    release(block);
    return true;
  });
}

std::size_t SharedMemoryPool::idleCount() const {
  std::lock_guard lock(mutex_);
  return idle_.size();
}

void SharedMemoryPool::release(const Block& block) {
  if (connection_ && !connection_->hasError()) {
    xcb_shm_detach(connection_->get(), block.segment);
    xcb_flush(connection_->get());
  }
  munmap(block.address, block.size);
}

// A server gone (restarted, say) took the segments with it: start again with a new connection.
void SharedMemoryPool::dropBroken() {
  if (!connection_ || !connection_->hasError()) return;
  for (const auto& block : idle_) munmap(block.address, block.size);
  idle_.clear();
  connection_.reset();
}

}  // namespace orlet::linux_capture
