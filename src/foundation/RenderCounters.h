#pragma once

#include <atomic>
#include <cstdint>

namespace orlet {

// What the picture costs, counted where it happens (capture threads and the paint path) and read
// by the diagnostic report. Counting only: nothing decides anything on these.
struct RenderCounters {
  std::atomic<std::uint64_t> framesCaptured{0};   // new pictures published by capture threads
  std::atomic<std::uint64_t> framesUnchanged{0};  // changes read that redrew the same pixels
  std::atomic<std::uint64_t> framesPainted{0};    // pictures painted in a view
  std::atomic<std::uint64_t> paintNanoseconds{0};

  // The process's counters: every capture thread and view adds to the same figures.
  static RenderCounters& process() {
    static RenderCounters counters;
    return counters;
  }
};

}  // namespace orlet
