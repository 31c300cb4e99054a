#pragma once

#include <functional>

namespace orlet {

enum class PathStatus { satisfied, unsatisfied, requiresConnection };

// Watches whether a usable network path exists (a default route over an interface that is up).
class NetworkPathMonitor {
 public:
  virtual ~NetworkPathMonitor() = default;

  // Starts watching and returns at once. The handler is called on a background thread, first
  // with the current status, then on changes, until cancel().
  virtual void start(std::function<void(PathStatus)> pathUpdateHandler) = 0;

  // Stops the reports; callable from the handler itself.
  virtual void cancel() = 0;
};

}  // namespace orlet
