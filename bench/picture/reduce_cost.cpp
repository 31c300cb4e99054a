// CPU time of reducing one picture, independent of what else the machine runs: a full change of
// a display reduced to the enlarged mirror and to a card, as the capture thread does it.
//
//   orlet_reduce_cost [ROUNDS]   prints "SOURCE -> PICTURE: average X ms, reduce Y ms" per size
#include <time.h>

#include <cstdio>
#include <cstdlib>

#include "capture/PictureReducer.h"

namespace {

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
  for (const Case& k : {Case{2560, 1440, 900, 506}, Case{2560, 1440, 197, 111},
                        Case{1920, 1080, 900, 506}, Case{3840, 2160, 900, 506}}) {
    orlet::PictureReducer reducer(k.sourceWidth, k.sourceHeight, k.width, k.height);
    auto source = orlet::Frame::allocate(k.sourceWidth, k.sourceHeight);
    for (std::size_t i = 0; i < source->byteCount(); ++i) {
      source->mutablePixels()[i] = std::uint8_t(i * 2654435761u >> 13);
    }
    auto averaged = orlet::Frame::allocate(reducer.averagedWidth(), reducer.averagedHeight());
    auto out = orlet::Frame::allocate(k.width, k.height);
    double averaging = 0, reducing = 0;
    for (int r = 0; r < rounds; ++r) {
      const double t0 = threadMs();
      reducer.average(source->pixels(), source->stride(), {0, 0, k.sourceWidth, k.sourceHeight},
                      *averaged);
      const double t1 = threadMs();
      reducer.reduce(*averaged, *out, {0, 0, k.width, k.height});
      reducing += threadMs() - t1;
      averaging += t1 - t0;
    }
    std::printf("%dx%d -> %dx%d (blocks of %d): average %.2f ms, reduce %.2f ms\n", k.sourceWidth,
                k.sourceHeight, k.width, k.height, reducer.block(), averaging / rounds,
                reducing / rounds);
  }
  return 0;
}
