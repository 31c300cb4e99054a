#include <sstream>

#include "OrletHarness.h"

namespace orlet::x11test {
namespace {

// The "captured" and "painted" counts of the last report ORLET wrote with --stats, which writes
// a report only when a count moved.
std::pair<long, long> lastReport(const std::string& output) {
  std::pair<long, long> last{-1, -1};
  std::istringstream lines(output);
  std::string line;
  while (std::getline(lines, line)) {
    long captured = 0, painted = 0;
    if (std::sscanf(line.c_str(), "orlet stats: captured %ld unchanged %*d painted %ld", &captured,
                    &painted) == 2) {
      last = {captured, painted};
    }
  }
  return last;
}

// The card of the main display shows the panel, which sits on that display: each repaint of the
// card changes the display it shows. The nested picture soon stops changing, and from then on
// nothing is captured or painted while nothing moves: ORLET stops reporting.
TEST_F(OrletTest, AStillScreenCostsNothingWithTheDisplayListOpen) {
  startOrlet({"--stats"});
  showMirror();
  ASSERT_TRUE(eventually([&] { return lastReport(orlet_->output()).second > 0; }, 10s))
      << orlet_->output();
  std::string seen = orlet_->output();
  auto since = std::chrono::steady_clock::now();
  EXPECT_TRUE(eventually(
      [&] {
        const std::string now = orlet_->output();
        if (now != seen) {
          seen = now;
          since = std::chrono::steady_clock::now();
        }
        // Three report periods without a report.
        return std::chrono::steady_clock::now() - since > 3s;
      },
      20s))
      << orlet_->output();
}

}  // namespace
}  // namespace orlet::x11test
