#pragma once

#include <sys/types.h>

#include <ostream>

namespace orlet::x11test {

class XProbe;

// What a process holds at one moment: from /proc (threads, open descriptors, resident and peak
// resident memory) and from the X server's resource extension (resources its clients own, and
// the bytes of their pixmaps).
struct Footprint {
  int threads = 0;
  int descriptors = 0;
  long residentKb = 0;
  long peakResidentKb = 0;
  long xResources = 0;
  long xPixmapBytes = 0;
};

Footprint footprintOf(pid_t pid, XProbe& x);
std::ostream& operator<<(std::ostream& out, const Footprint& f);

}  // namespace orlet::x11test
