#pragma once

#include <vector>

#include "linux/x11/XConnection.h"
#include "platform/WindowServer.h"

namespace orlet::x11 {

// The displays as RandR 1.5 monitors, the main one (the primary, else the one at the desktop's
// origin) first; each one's free area is what the window manager's _NET_WORKAREA leaves of it.
// Without monitors, the whole screen; empty when the server answers nothing.
std::vector<ScreenArea> readScreenAreas(const XConnection& x);

}  // namespace orlet::x11
