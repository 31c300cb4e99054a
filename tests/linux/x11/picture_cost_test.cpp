#include <sstream>

#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

struct Counters {
  long captured = -1, painted = -1;
  friend bool operator==(const Counters&, const Counters&) = default;
};

// The counters of the last two reports ORLET wrote with --stats.
std::pair<Counters, Counters> lastTwoReports(const std::string& output) {
  std::pair<Counters, Counters> last;
  std::istringstream lines(output);
  std::string line;
  while (std::getline(lines, line)) {
    Counters c;
    if (std::sscanf(line.c_str(), "orlet stats: captured %ld unchanged %*d painted %ld",
                    &c.captured, &c.painted) == 2) {
      last = {last.second, c};
    }
  }
  return last;
}

// The card of the main display shows the panel, which sits on that display: each repaint of the
// card changes the display it shows. The nested picture soon stops changing, and from then on
// nothing is captured or painted while nothing moves.
TEST_F(OrletTest, AStillScreenCostsNothingWithTheDisplayListOpen) {
  startOrlet({"--stats"});
  showMirror();
  ASSERT_TRUE(eventually([&] { return lastTwoReports(orlet_->output()).second.painted > 0; }, 10s))
      << orlet_->output();
  EXPECT_TRUE(eventually(
      [&] {
        const auto [before, after] = lastTwoReports(orlet_->output());
        return before.captured > 0 && before == after;
      },
      15s))
      << orlet_->output();
}

}  // namespace
}  // namespace orlet::x11test
