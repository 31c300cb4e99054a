#pragma once

#include <xcb/shm.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "foundation/Scheduler.h"
#include "linux/capture/SharedMemory.h"
#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {

// Shared memory that outlives the captures using it.
//
// Each capture has its own X connection, and the server maps memory attached on a connection
// afresh: its first read of a 2560 x 1440 display into new memory costs some 50 ms of page
// faults, against about 1 ms once mapped. The display list tests every display every five
// seconds with a new capture, so that cost would come back with every test. The pool attaches
// on a connection of its own that stays open: a segment stays mapped in the server between
// captures, and any connection to the same server may name it.
//
// Memory comes back to the pool once nothing maps it any more (frames still shown included), and
// leaves it after `keepFor` unused; meanwhile it counts in the server's resident memory, not in
// ours. Thread-safe.
class SharedMemoryPool : public std::enable_shared_from_this<SharedMemoryPool> {
 public:
  using Clock = std::chrono::steady_clock;
  // Longer than the display list's five-second refresh.
  static constexpr std::chrono::seconds keepFor{6};
  // Unused memory held at most: the full-size pictures and scratch memory of both displays'
  // tests.
  static constexpr std::size_t maxIdleBytes = std::size_t(48) << 20;

  // `scheduler` (main thread) times the release of unused memory; it must outlive the pool.
  static std::shared_ptr<SharedMemoryPool> make(Scheduler& scheduler, std::string displayName);
  ~SharedMemoryPool();
  SharedMemoryPool(const SharedMemoryPool&) = delete;
  SharedMemoryPool& operator=(const SharedMemoryPool&) = delete;

  // `size` bytes attached to the server, unused memory of that size first; its contents are
  // whatever was last written. Null with `error` set when the pool cannot attach.
  std::unique_ptr<SharedMemory> take(std::size_t size, std::string& error);

  // Releases the memory unused since before `now - keepFor`.
  void trim(Clock::time_point now);

  std::size_t idleCount() const;

 private:
  struct Block {
    xcb_shm_seg_t segment;
    void* address;
    std::size_t size;
    Clock::time_point since;  // unused since
    unsigned connection;      // which of the pool's connections attached it
  };

  SharedMemoryPool(Scheduler& scheduler, std::string displayName)
      : scheduler_(scheduler), displayName_(std::move(displayName)) {}
  std::unique_ptr<SharedMemory> lend(const Block& block);
  void giveBack(Block block);
  void scheduleTrim();
  // With the lock held.
  void release(const Block& block);
  void dropBroken();

  Scheduler& scheduler_;
  const std::string displayName_;
  mutable std::mutex mutex_;
  std::unique_ptr<XcbConnection> connection_;
  unsigned connectionCount_ = 0;
  std::vector<Block> idle_;
  std::atomic<bool> trimPending_{false};
};

}  // namespace orlet::linux_capture
