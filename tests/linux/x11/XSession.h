#pragma once

#include <string>

namespace orlet::x11test {

// A private X session (Xorg dummy with two outputs, openbox, trayer) on the first free display
// among :50 to :59, started by scripts/xsession.sh and stopped again when destroyed.
class XSession {
 public:
  XSession();
  XSession(const XSession&) = delete;
  XSession& operator=(const XSession&) = delete;
  ~XSession();

  const std::string& display() const { return display_; }

 private:
  std::string display_;
  std::string runDirectory_;
};

}  // namespace orlet::x11test
