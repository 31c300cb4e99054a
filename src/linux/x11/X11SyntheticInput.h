#pragma once

#include <functional>
#include <iosfwd>

#include "linux/x11/XConnection.h"
#include "platform/SyntheticInput.h"

namespace orlet::x11 {

// Clicks through the XTEST extension, as if from the real mouse (the server moves the pointer
// and delivers the button to whichever window is under it), and warps with WarpPointer on the
// root. Without XTEST the clicks are dropped, said once on `diagnostics`; warps still work. A
// click that would land on a window of this connection's own (ORLET's) is dropped too.
class X11SyntheticInput final : public SyntheticInput {
 public:
  // `warped` runs after each warp, for those who keep a reading of the pointer.
  X11SyntheticInput(const XConnection& x, std::ostream& diagnostics,
                    std::function<void()> warped = {});

  void leftButtonDown(Point at) override;
  void leftButtonUp(Point at) override;
  void warpPointer(Point at, std::optional<Rect> onlyFrom) override;

  bool hasXTest() const { return hasXTest_; }

 private:
  void fakeButton(std::uint8_t type, Point at);
  bool landsOnOwnWindow(Point at) const;

  const XConnection& x_;
  std::ostream& diagnostics_;
  std::function<void()> warped_;
  bool hasXTest_ = false;
  bool reportedMissing_ = false;
  bool pressDropped_ = false;
  bool reportedOwnWindow_ = false;
};

}  // namespace orlet::x11
