#pragma once

#include <QCoreApplication>

#include "platform/StatusBar.h"

namespace orlet::linux_qt {

class QtApplication final : public Application {
 public:
  void terminate() override { QCoreApplication::quit(); }
};

}  // namespace orlet::linux_qt
