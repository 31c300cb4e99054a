#pragma once

#include <string>

namespace orlet::x11 {

// Whether this process can reach an X server, asked before the toolkit starts (Qt aborts when
// it cannot open its display).
struct DisplayProbe {
  bool reachable = false;
  int screen = 0;       // the screen $DISPLAY names
  std::string problem;  // why not, for the user
};

DisplayProbe probeDisplay();

}  // namespace orlet::x11
