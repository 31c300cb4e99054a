#pragma once

#include <QObject>
#include <ostream>

namespace orlet::linux_qt {

// With the diagnostic option: once a second, one line on `out` with the picture's counters so
// far (frames captured, redraws found unchanged, frames painted, total paint time).
void startStatsReport(QObject* parent, std::ostream& out);

}  // namespace orlet::linux_qt
