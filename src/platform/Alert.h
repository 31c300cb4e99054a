#pragma once

#include <string>
#include <vector>

namespace orlet {

enum class AlertStyle { warning = 0, informational = 1, critical = 2 };

struct Alert {
  std::string messageText;
  std::string informativeText;
  AlertStyle style = AlertStyle::warning;
  std::string symbolName;  // a system symbol ("wifi.slash"), empty for the style's own icon
  std::vector<std::string> buttons;
};

// Modal alerts on the main thread.
class AlertPresenter {
 public:
  virtual ~AlertPresenter() = default;
  // Shows the alert and returns the index of the button chosen once it is dismissed.
  virtual int runModal(const Alert& alert) = 0;
};

}  // namespace orlet
