#include "linux/qt/StatsReport.h"

#include <QTimer>
#include <cstdio>
#include <string>

#include "foundation/RenderCounters.h"

namespace orlet::linux_qt {

void startStatsReport(QObject* parent, std::ostream& out) {
  auto* timer = new QTimer(parent);
  // A line only when a counter moved: a still screen costs no write, and the last line written
  // stays the current one.
  QObject::connect(timer, &QTimer::timeout, parent, [&out, last = std::string()]() mutable {
    const auto& c = RenderCounters::process();
    char line[160];
    std::snprintf(line, sizeof line,
                  "orlet stats: captured %llu unchanged %llu painted %llu paint_ms %.1f\n",
                  static_cast<unsigned long long>(c.framesCaptured.load()),
                  static_cast<unsigned long long>(c.framesUnchanged.load()),
                  static_cast<unsigned long long>(c.framesPainted.load()),
                  double(c.paintNanoseconds.load()) / 1e6);
    if (line == last) return;
    last = line;
    out << line << std::flush;
  });
  timer->start(1000);
}

}  // namespace orlet::linux_qt
