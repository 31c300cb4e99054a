#pragma once

#include "foundation/Scheduler.h"
#include "foundation/Subscription.h"
#include "platform/Panel.h"
#include "window/CaptureOneFocus.h"

namespace orlet {

// The mirror panel never keeps activation: every button press on it re-activates the editor one
// turn of the main queue later, once the press itself has reached the panel's content. The
// press is never stopped, so clicks, drags and resizes work as usual.
[[nodiscard]] Subscription handActivationBackOnPress(Panel& panel, Scheduler& scheduler,
                                                     const CaptureOneFocus& editor);

}  // namespace orlet
