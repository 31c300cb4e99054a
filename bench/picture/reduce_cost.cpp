// CPU time of reducing one picture, independent of what else the machine runs: a full change of
// a display reduced to the enlarged mirror and to a card, as the capture thread does it.
//
//   orlet_reduce_cost [ROUNDS [SOURCE_W SOURCE_H W H]]
//   prints "SOURCE -> PICTURE (blocks, LEVEL): down X ms, across Y ms, total Z ms" for the given
//   size or a few usual ones, at each instruction-set level the processor has, widest first (one
//   size and one round under `valgrind --tool=callgrind` gives its instruction count).
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "capture/PictureReducer.h"

namespace {

namespace reduction = orlet::reduction;

double threadMs() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 20;
  struct Case {
    int sourceWidth, sourceHeight, width, height;
  };
  std::vector<Case> cases{{2560, 1440, 900, 506},
                          {2560, 1440, 197, 111},
                          {1920, 1080, 900, 506},
                          {3840, 2160, 900, 506}};
  // The widest level first: what the capture thread uses; then the narrower ones, for comparison.
  const std::pair<reduction::Level, const char*> levels[] = {{reduction::Level::avx512, "avx512"},
                                                             {reduction::Level::avx2, "avx2"},
                                                             {reduction::Level::plain, "plain"}};
  if (argc > 5)
    cases = {{std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5])}};
  for (const Case& k : cases) {
    orlet::PictureReducer reducer(k.sourceWidth, k.sourceHeight, k.width, k.height);
    auto source = orlet::Frame::allocate(k.sourceWidth, k.sourceHeight);
    for (std::size_t i = 0; i < source->byteCount(); ++i) {
      source->mutablePixels()[i] = std::uint8_t(i * 2654435761u >> 13);
    }
    orlet::ReducedDown down = reducer.reducedDown();
    auto out = orlet::Frame::allocate(k.width, k.height);
    for (const auto& [level, name] : levels) {
      if (!reduction::available(level)) continue;
      reduction::setLevel(level);
      // The plain level takes some fifteen times as long: a tenth of the rounds tells enough.
      const int n = level == reduction::Level::plain ? std::max(rounds / 10, 1) : rounds;
      double downMs = 0, acrossMs = 0;
      // Round -1 is not counted: it brings the picture and the working memory into the caches as
      // the previous level's rounds left them for the next, so that every level starts alike.
      for (int r = -1; r < n; ++r) {
        const double t0 = threadMs();
        reducer.reduceDown(source->pixels(), source->stride(),
                           {0, 0, k.sourceWidth, k.sourceHeight}, down);
        const double t1 = threadMs();
        reducer.reduce(down, *out, {0, 0, k.width, k.height});
        if (r < 0) continue;
        acrossMs += threadMs() - t1;
        downMs += t1 - t0;
      }
      std::printf(
          "%dx%d -> %dx%d (blocks of %d, %s): down %.2f ms, across %.2f ms, total %.2f ms\n",
          k.sourceWidth, k.sourceHeight, k.width, k.height, reducer.block(), name, downMs / n,
          acrossMs / n, (downMs + acrossMs) / n);
    }
  }
  return 0;
}
