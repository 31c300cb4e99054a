#include "linux/x11/X11KeyboardHook.h"

#include <xcb/xinput.h>

#include "foundation/UpperCase.h"

namespace orlet::x11 {
namespace {

// Caps Lock and Num Lock never enter the mask, so each grab is made in their four variants.
constexpr std::uint16_t lockVariants[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                          XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

std::uint16_t coreMask(std::int64_t modifiers) {
  std::uint16_t mask = 0;
  if (modifiers & modifier::command) mask |= XCB_MOD_MASK_4;
  if (modifiers & modifier::shift) mask |= XCB_MOD_MASK_SHIFT;
  if (modifiers & modifier::option) mask |= XCB_MOD_MASK_1;
  if (modifiers & modifier::control) mask |= XCB_MOD_MASK_CONTROL;
  return mask;
}

}  // namespace

std::unique_ptr<X11KeyboardHook> X11KeyboardHook::create(const XConnection& x,
                                                         XEventSource& events) {
  const auto opcode = x.xinputOpcode();
  // The toolkit has announced XI 2.2 or later on this connection: raw events reach it despite
  // grabs (XI 2.1 and later).
  if (opcode == 0) return nullptr;
  auto keyboard = XkbKeyboard::create(x);
  if (!keyboard) return nullptr;
  return std::unique_ptr<X11KeyboardHook>(
      new X11KeyboardHook(x, events, std::move(keyboard), opcode));
}

X11KeyboardHook::X11KeyboardHook(const XConnection& x, XEventSource& events,
                                 std::unique_ptr<XkbKeyboard> keyboard, std::uint8_t xinputOpcode)
    : x_(x), keyboard_(std::move(keyboard)), xinputOpcode_(xinputOpcode) {
  events_ = events.subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

X11KeyboardHook::~X11KeyboardHook() {
  *alive_ = false;
  if (*swallowed_) ungrab(**swallowed_);
  if (!watchers_.empty()) selectRawKeys(false);
  x_.flush();
}

Subscription X11KeyboardHook::watch(Handler handler) {
  if (watchers_.empty()) selectRawKeys(true);
  auto added = std::make_shared<Subscription>(watchers_.add(std::move(handler)));
  return Subscription([this, alive = alive_, added] {
    added->cancel();
    if (*alive && watchers_.empty()) selectRawKeys(false);
  });
}

void X11KeyboardHook::selectRawKeys(bool on) {
  x_.selectRootInput(
      XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE, on);
  down_.reset();
  x_.flush();
}

std::optional<Subscription> X11KeyboardHook::swallow(const std::set<std::string>& names,
                                                     std::int64_t modifiers) {
  if (*swallowed_) ungrab(**swallowed_);
  Swallowed wanted{names, coreMask(modifiers), {}};
  if (!grab(wanted)) return std::nullopt;
  *swallowed_ = std::move(wanted);
  return Subscription([this, alive = alive_, swallowed = swallowed_] {
    if (!*alive || !*swallowed) return;
    ungrab(**swallowed);
    swallowed->reset();
  });
}

// Every request is sent before the first answer is awaited. BadAccess for any of them means
// another client holds that key with those modifiers; then none is kept.
bool X11KeyboardHook::grab(Swallowed& swallowed) {
  std::vector<xcb_void_cookie_t> cookies;
  for (int code = keyboard_->minKeycode(); code <= keyboard_->maxKeycode(); ++code) {
    const auto keycode = static_cast<xcb_keycode_t>(code);
    const auto characters = keyboard_->characters(keycode);
    if (characters.empty() || !swallowed.names.contains(upperCased(characters))) continue;
    swallowed.grabbed.push_back(keycode);
    for (const auto variant : lockVariants) {
      cookies.push_back(xcb_grab_key_checked(x_.get(), 0, x_.root(), swallowed.mask | variant,
                                             keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
  }
  bool refused = false;
  for (const auto cookie : cookies) refused |= !x_.check(cookie);
  if (refused) ungrab(swallowed);
  return !refused;
}

void X11KeyboardHook::ungrab(Swallowed& swallowed) {
  for (const auto keycode : swallowed.grabbed) {
    for (const auto variant : lockVariants) {
      xcb_ungrab_key(x_.get(), keycode, x_.root(), swallowed.mask | variant);
    }
  }
  swallowed.grabbed.clear();
  x_.flush();
}

Subscription X11KeyboardHook::takeKeyboard() {
  // Grabbed on the root window, which no toolkit window is: the keys come to us without any
  // window of ours taking the focus, so the window manager's active window stays as it was.
  auto* reply = xcb_grab_keyboard_reply(x_.get(),
                                        xcb_grab_keyboard(x_.get(), 0, x_.root(), XCB_CURRENT_TIME,
                                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                        nullptr);
  const bool grabbed = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
  std::free(reply);
  if (!grabbed) return {};
  return Subscription([this, alive = alive_] {
    if (!*alive) return;
    xcb_ungrab_keyboard(x_.get(), XCB_CURRENT_TIME);
    x_.flush();
  });
}

void X11KeyboardHook::handle(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7f;
  if (type == XCB_GE_GENERIC) {
    handleRawKey(event);
    return;
  }
  if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
    // Only our grabs send us keys of the root window. The server keeps the raw events of a
    // grabbed keyboard from the grabbing client, so these are the only report of them.
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
    if (key.event == x_.root()) report(type == XCB_KEY_PRESS, key.detail, key.time, false);
    return;
  }
  if (keyboard_->handle(event) != XkbKeyboard::Change::layout || !*swallowed_) return;
  // Another group or keymap: the same names may now sit on other keys.
  auto& swallowed = **swallowed_;
  ungrab(swallowed);
  grab(swallowed);
}

void X11KeyboardHook::handleRawKey(const xcb_generic_event_t& event) {
  const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
  if (raw.extension != xinputOpcode_) return;
  const bool press = raw.event_type == XCB_INPUT_RAW_KEY_PRESS;
  if (!press && raw.event_type != XCB_INPUT_RAW_KEY_RELEASE) return;
  report(press, static_cast<xcb_keycode_t>(raw.detail), raw.time,
         (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0);
}

// The press that starts a grab comes twice, raw and grabbed, with the same time stamp.
void X11KeyboardHook::report(bool press, xcb_keycode_t keycode, xcb_timestamp_t time,
                             bool repeatFlag) {
  const Seen seen{press, keycode, time};
  if (seen == lastSeen_) return;
  lastSeen_ = seen;
  KeyEvent key;
  key.isRepeat = press && (down_.test(keycode) || repeatFlag);
  down_.set(keycode, press);
  if (keyboard_->isModifierKey(keycode)) {
    key.type = KeyEventType::modifiersChanged;
  } else {
    key.type = press ? KeyEventType::keyDown : KeyEventType::keyUp;
    key.characters = keyboard_->characters(keycode);
    key.namedKey = keyboard_->namedKey(keycode);
  }
  key.modifiers = keyboard_->modifiers();
  watchers_.call(key);
}

}  // namespace orlet::x11
