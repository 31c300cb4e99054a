#pragma once

#include <string>
#include <vector>

#include "Footprint.h"
#include "OrletHarness.h"

namespace orlet::x11test {

// The counts of the reliability cases as a share of the full ones (1,000 show/hide cycles, 200
// unplugs, 100 editor windows, a 10-minute soak): ORLET_RELIABILITY_SCALE, 1 for the full
// counts; a fiftieth unless set.
double reliabilityScale();
int scaled(int fullCount);
// The soak's length as a share of its 10 minutes: ORLET_RELIABILITY_SOAK_SCALE, else the same
// share as the counts.
double soakScale();

// Where the global point `p` of a 16:9 display at `display` appears in the card at `index` of
// the mirror `m`.
Spot inCard(const WindowRect& m, int index, const Rect& display, Point p);
inline Point middle(const WindowRect& r) {
  return {r.x + r.width / 2.0, r.y + r.height / 2.0};
}
inline constexpr Rect kMainDisplay{0, 0, 1920, 1080};

// What a studio machine does to ORLET over hours, compressed: ORLET with every setting saved
// (button and mirror frames, pin state, shortcut Ctrl+K), the mirror placed across both displays
// and a patch of colour on each display that its card must show. Each case takes ORLET's
// footprint once it has settled, does its churn, and ends with `expectHeldUp`.
class ReliabilityTest : public OrletTest {
 protected:
  static constexpr std::uint32_t kMainColour = 0x2e8b57;
  static constexpr std::uint32_t kSecondColour = 0xc05a28;
  static constexpr WindowRect kMainPatch{1400, 880, 480, 150};
  static constexpr WindowRect kSecondPatch{3500, 900, 900, 500};

  void SetUp() override;

  Footprint footprint() { return footprintOf(orlet_->pid(), *x_); }
  // Shows or hides the mirror with the shortcut, through XTEST, and waits until it has.
  void toggleMirror();
  // The same, and a mirror shown again must show a picture.
  void toggleWithShortcut();
  // The mirror says in words why it shows no display (text across its middle, where an empty
  // grid has only its background).
  bool saysWhyNoDisplay();
  // Enlarges the second display from the grid, or goes back to the grid from the enlarged view.
  void switchView();
  bool isEnlarged();
  bool secondCardShowsPatch();
  // Both display cards show their patch within one 5-second catalogue refresh.
  bool showsBothDisplays();
  // Paints the second display's patch in each colour in turn, and checks each reaches the mirror
  // (the card, or the enlarged picture) in time.
  void paintSecondPatch(const std::vector<std::uint32_t>& colours);
  void xrandr(const std::string& arguments);
  // Nothing held more than `before` once settled (threads, descriptors, X resources, within
  // what one picture in flight holds), every saved setting still in the file, both displays
  // shown. Prints both footprints.
  void expectHeldUp(const Footprint& before);
  // The part of it that holds on any screen: nothing more held, every saved setting in the file.
  void expectNothingHeld(const Footprint& before);

  // Set before SetUp: the mirror saved as pinned.
  bool pinned_ = false;
  // Set before SetUp: ORLET's command line.
  std::vector<std::string> orletArguments_;
  xcb_window_t secondPatch_ = XCB_NONE;
  std::uint32_t secondPatchColour_ = kSecondColour;
  // The saved settings as "key", "value" pairs, as they must stay.
  std::vector<std::pair<std::string, std::string>> saved_;
};

}  // namespace orlet::x11test
