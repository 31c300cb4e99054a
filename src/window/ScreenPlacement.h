#pragma once

#include <optional>
#include <vector>

#include "platform/WindowServer.h"

namespace orlet {

// Whether a window of `frame` would be on a display now: its centre lies on one. With no display
// known, everything counts as on one, so that nothing is moved on a guess.
bool liesOnAScreen(const Rect& frame, const std::vector<ScreenArea>& screens);

// Where our windows first appear: the top-left corner of the main display's free area (the
// operator's own screen, wherever the client's display stands); nullopt with no display known.
std::optional<Point> mainScreenCorner(const std::vector<ScreenArea>& screens);

}  // namespace orlet
