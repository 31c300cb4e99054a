#pragma once

#include <xcb/xcb.h>

#include <bitset>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "linux/x11/XConnection.h"
#include "linux/x11/XEventSource.h"
#include "linux/x11/XkbKeyboard.h"
#include "platform/KeyboardHook.h"

namespace orlet::x11 {

// The session's keyboard on X11. XInput 2 raw key events on the root window show every key of
// the session, whoever has the focus or a grab (XI 2.1 delivers raw events regardless of
// grabs); passive grabs of the shortcut's keys under the exact modifiers keep them from the
// applications. Nothing is selected while nobody watches, so an idle session costs nothing.
class X11KeyboardHook final : public KeyboardHook {
 public:
  // nullptr when the server lacks XInput 2 or XKB.
  static std::unique_ptr<X11KeyboardHook> create(const XConnection& x, XEventSource& events);
  ~X11KeyboardHook() override;

  Subscription watch(Handler handler) override;
  std::optional<Subscription> swallow(const std::set<std::string>& names,
                                      std::int64_t modifiers) override;
  Subscription takeKeyboard() override;

 private:
  struct Swallowed {
    std::set<std::string> names;
    std::uint16_t mask;
    std::vector<xcb_keycode_t> grabbed;
  };
  X11KeyboardHook(const XConnection& x, XEventSource& events, std::unique_ptr<XkbKeyboard> keyboard,
                  std::uint8_t xinputOpcode);
  void handle(const xcb_generic_event_t& event);
  void handleRawKey(const xcb_generic_event_t& event);
  void report(bool press, xcb_keycode_t keycode, xcb_timestamp_t time, bool repeatFlag);
  void selectRawKeys(bool on);
  bool grab(Swallowed& swallowed);
  void ungrab(Swallowed& swallowed);

  const XConnection& x_;
  std::unique_ptr<XkbKeyboard> keyboard_;
  std::uint8_t xinputOpcode_;
  HandlerList<const KeyEvent&> watchers_;
  std::shared_ptr<std::optional<Swallowed>> swallowed_ =
      std::make_shared<std::optional<Swallowed>>();
  struct Seen {
    bool press = false;
    xcb_keycode_t keycode = 0;
    xcb_timestamp_t time = 0;
    friend bool operator==(const Seen&, const Seen&) = default;
  };
  Seen lastSeen_;
  std::bitset<256> down_;  // keys seen going down and not yet up: a second press is a repeat
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  Subscription events_;
};

}  // namespace orlet::x11
