#pragma once

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <string>

#include "linux/x11/XConnection.h"
#include "platform/KeyboardHook.h"

namespace orlet::x11 {

// The core keyboard's layout and modifier state as the server sees them, kept current from
// XKB's notify events: what a key types on its first level in the active group, and which of
// Super, Shift, Alt and Control are held.
class XkbKeyboard {
 public:
  // nullptr when the server lacks XKB.
  static std::unique_ptr<XkbKeyboard> create(const XConnection& x);
  ~XkbKeyboard();
  XkbKeyboard(const XkbKeyboard&) = delete;
  XkbKeyboard& operator=(const XkbKeyboard&) = delete;

  enum class Change { none, state, layout };
  // Follows an XKB event; `layout` when what the keys type may have changed (another keymap
  // or another group).
  Change handle(const xcb_generic_event_t& event);

  // What `keycode` types with no modifier, UTF-8; empty for keys that type nothing.
  std::string characters(xcb_keycode_t keycode) const;
  NamedKey namedKey(xcb_keycode_t keycode) const;
  // Shift, Control, Caps Lock...: keys whose movement is a change of modifiers.
  bool isModifierKey(xcb_keycode_t keycode) const;
  // The `modifier` mask held now.
  std::int64_t modifiers() const;

  xcb_keycode_t minKeycode() const;
  xcb_keycode_t maxKeycode() const;

 private:
  XkbKeyboard(const XConnection& x, std::uint8_t firstEvent, std::int32_t device);
  bool reload();
  xkb_keysym_t firstLevelKeysym(xcb_keycode_t keycode) const;

  const XConnection& x_;
  std::uint8_t firstEvent_;
  std::int32_t device_;
  xkb_context* context_;
  xkb_keymap* keymap_ = nullptr;
  xkb_state* state_ = nullptr;
  std::uint16_t coreModifiers_ = 0;
};

}  // namespace orlet::x11
