#pragma once

#include <iosfwd>

#include "linux/x11/XConnection.h"
#include "platform/SyntheticInput.h"

namespace orlet::x11 {

// Clicks through the XTEST extension, as if from the real mouse (the server moves the pointer
// and delivers the button to whichever window is under it), and warps with WarpPointer on the
// root. Without XTEST the clicks are dropped, said once on `diagnostics`; warps still work.
class X11SyntheticInput final : public SyntheticInput {
 public:
  X11SyntheticInput(const XConnection& x, std::ostream& diagnostics);

  void leftButtonDown(Point at) override;
  void leftButtonUp(Point at) override;
  void warpPointer(Point at) override;

  bool hasXTest() const { return hasXTest_; }

 private:
  void fakeButton(std::uint8_t type, Point at);

  const XConnection& x_;
  std::ostream& diagnostics_;
  bool hasXTest_ = false;
  bool reportedMissing_ = false;
};

}  // namespace orlet::x11
