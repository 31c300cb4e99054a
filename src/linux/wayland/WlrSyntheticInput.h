#pragma once

#include <iosfwd>

#include "linux/wayland/WaylandConnection.h"
#include "platform/SyntheticInput.h"

struct zwlr_virtual_pointer_v1;

namespace orlet::wayland {

// Clicks and pointer moves through a virtual pointer of the wlroots protocol: the compositor
// moves its own pointer and delivers the button to whichever surface is under it. A Wayland
// client cannot warp the real pointer, so a warp is an absolute motion of the virtual one. The
// pointer is made once and kept: a seat without input devices has no pointer until one exists.
class WlrSyntheticInput final : public SyntheticInput {
 public:
  // Without the protocol, clicks and warps are dropped, said once on `diagnostics`.
  WlrSyntheticInput(WaylandConnection& connection, std::ostream& diagnostics);
  ~WlrSyntheticInput() override;

  void leftButtonDown(Point at) override;
  void leftButtonUp(Point at) override;
  // The compositor cannot tell where the pointer is now, so `onlyFrom` cannot be honoured: the
  // move is made in any case.
  void warpPointer(Point at, std::optional<Rect> onlyFrom) override;

 private:
  bool moveTo(Point at);
  void button(bool pressed, Point at);

  WaylandConnection& connection_;
  std::ostream& diagnostics_;
  zwlr_virtual_pointer_v1* pointer_ = nullptr;
  bool reportedMissing_ = false;
};

}  // namespace orlet::wayland
