#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "foundation/Subscription.h"

namespace orlet {

// The shortcut's modifier mask, as it is stored: no other modifier (Caps Lock, Num Lock, AltGr)
// enters it.
namespace modifier {
inline constexpr std::int64_t command = 256;  // Super
inline constexpr std::int64_t shift = 512;
inline constexpr std::int64_t option = 2048;  // Alt
inline constexpr std::int64_t control = 4096;
}  // namespace modifier

// Keys known by what they do rather than by a character they type.
enum class NamedKey {
  none,
  f1,
  f2,
  f3,
  f4,
  f5,
  f6,
  f7,
  f8,
  f9,
  f10,
  f11,
  f12,
  f13,
  f14,
  f15,
  f16,
  f17,
  f18,
  f19,
  f20,
  space,
  returnKey,
  tab,
  backspace,
  forwardDelete,
  escape,
  leftArrow,
  rightArrow,
  upArrow,
  downArrow,
  home,
  end,
  pageUp,
  pageDown,
};

enum class KeyEventType {
  keyDown,
  keyUp,
  modifiersChanged,  // a modifier key (Shift, Control, Caps Lock...) went down or up
};

struct KeyEvent {
  KeyEventType type = KeyEventType::keyDown;
  // What the key types with no modifier in the current layout (UTF-8, not upper-cased); empty
  // for keys that type nothing.
  std::string characters;
  NamedKey namedKey = NamedKey::none;
  std::int64_t modifiers = 0;  // the `modifier` mask held when the key moved
  bool isRepeat = false;       // a key-down the keyboard repeats while the key is held
};

// The session's keyboard, whichever application has the focus.
class KeyboardHook {
 public:
  using Handler = std::function<void(const KeyEvent&)>;

  virtual ~KeyboardHook() = default;

  // Calls `handler` on the main thread for every key event of the session, swallowed or not,
  // until the subscription ends.
  [[nodiscard]] virtual Subscription watch(Handler handler) = 0;

  // Keeps the keys whose characters, upper-cased, are in `names` from every application while
  // exactly `modifiers` are held (Caps Lock and Num Lock aside), until the subscription ends;
  // they are still reported to watch(). nullopt when the system refuses, for example because
  // another program already holds one of those keys.
  [[nodiscard]] virtual std::optional<Subscription> swallow(const std::set<std::string>& names,
                                                            std::int64_t modifiers) = 0;

  // Keeps every key from the other applications until the subscription ends, without making
  // this program the active one; the keys are still reported to watch(). Best effort: when
  // another program holds the keyboard, the keys keep going where they went.
  [[nodiscard]] virtual Subscription takeKeyboard() = 0;
};

}  // namespace orlet
