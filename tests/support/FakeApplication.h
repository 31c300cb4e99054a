#pragma once

#include "platform/StatusBar.h"

namespace orlet::test {

class FakeApplication final : public Application {
 public:
  void terminate() override { terminated_ = true; }
  bool isTerminated() const { return terminated_; }

 private:
  bool terminated_ = false;
};

}  // namespace orlet::test
