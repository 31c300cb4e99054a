#pragma once

#include <iosfwd>

#include "foundation/HandlerList.h"
#include "foundation/Subscription.h"
#include "linux/x11/XConnection.h"
#include "linux/x11/XEventSource.h"
#include "platform/CursorSource.h"

namespace orlet::x11 {

// The cursor image through XFIXES: fetched when first asked for and again only after the server
// announced a new cursor (CursorNotify on the root), so a still cursor costs no request. Without
// XFIXES (said once on `diagnostics`) the cursor is unknown and none is drawn.
class X11CursorSource final : public CursorSource {
 public:
  X11CursorSource(const XConnection& x, XEventSource& events, std::ostream& diagnostics);

  CursorImageRef currentCursor() const override;
  [[nodiscard]] Subscription observeChanges(std::function<void()> changed) const override {
    return changes_.add(std::move(changed));
  }

 private:
  void handle(const xcb_generic_event_t& event);

  const XConnection& x_;
  std::uint8_t cursorNotify_ = 0;  // the extension's event code, 0 without XFIXES
  mutable CursorImageRef cached_;
  mutable bool stale_ = true;
  mutable HandlerList<> changes_;
  Subscription subscription_;
};

}  // namespace orlet::x11
