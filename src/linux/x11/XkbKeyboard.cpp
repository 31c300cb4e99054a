#include "linux/x11/XkbKeyboard.h"

#define explicit explicit_  // xkb.h names a struct member "explicit"
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <array>
#include <utility>

namespace orlet::x11 {
namespace {

constexpr std::uint16_t watchedEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                        XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                        XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
constexpr std::uint16_t mapParts =
    XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
    XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS | XCB_XKB_MAP_PART_KEY_ACTIONS |
    XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

// Every XKB event starts with this header.
struct XkbEventHeader {
  std::uint8_t responseType;
  std::uint8_t xkbType;
  std::uint16_t sequence;
  xcb_timestamp_t time;
  std::uint8_t deviceID;
};

constexpr std::array<std::pair<xkb_keysym_t, NamedKey>, 15> namedKeysyms{{
    {XKB_KEY_space, NamedKey::space},
    {XKB_KEY_Return, NamedKey::returnKey},
    {XKB_KEY_Tab, NamedKey::tab},
    {XKB_KEY_ISO_Left_Tab, NamedKey::tab},
    {XKB_KEY_BackSpace, NamedKey::backspace},
    {XKB_KEY_Delete, NamedKey::forwardDelete},
    {XKB_KEY_Escape, NamedKey::escape},
    {XKB_KEY_Left, NamedKey::leftArrow},
    {XKB_KEY_Right, NamedKey::rightArrow},
    {XKB_KEY_Up, NamedKey::upArrow},
    {XKB_KEY_Down, NamedKey::downArrow},
    {XKB_KEY_Home, NamedKey::home},
    {XKB_KEY_End, NamedKey::end},
    {XKB_KEY_Prior, NamedKey::pageUp},
    {XKB_KEY_Next, NamedKey::pageDown},
}};

}  // namespace

std::unique_ptr<XkbKeyboard> XkbKeyboard::create(const XConnection& x) {
  std::uint8_t firstEvent = 0;
  if (!xkb_x11_setup_xkb_extension(
          x.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
          XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent, nullptr)) {
    return nullptr;
  }
  const auto device = xkb_x11_get_core_keyboard_device_id(x.get());
  if (device < 0) return nullptr;
  std::unique_ptr<XkbKeyboard> keyboard(new XkbKeyboard(x, firstEvent, device));
  if (!keyboard->context_ || !keyboard->reload()) return nullptr;
  // The same selection the toolkit makes on this connection, so its own keyboard is unaffected.
  xcb_xkb_select_events(x.get(), XCB_XKB_ID_USE_CORE_KBD, watchedEvents, 0, watchedEvents, mapParts,
                        mapParts, nullptr);
  // A held key then repeats as presses alone, as it does for raw events, instead of the
  // release and press pairs core clients get by default: a repeat never looks like a release.
  xcb_xkb_per_client_flags(x.get(), XCB_XKB_ID_USE_CORE_KBD,
                           XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                           XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
  return keyboard;
}

XkbKeyboard::XkbKeyboard(const XConnection& x, std::uint8_t firstEvent, std::int32_t device)
    : x_(x),
      firstEvent_(firstEvent),
      device_(device),
      context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {}

XkbKeyboard::~XkbKeyboard() {
  xkb_state_unref(state_);
  xkb_keymap_unref(keymap_);
  xkb_context_unref(context_);
}

bool XkbKeyboard::reload() {
  auto* keymap =
      xkb_x11_keymap_new_from_device(context_, x_.get(), device_, XKB_KEYMAP_COMPILE_NO_FLAGS);
  auto* state = keymap ? xkb_x11_state_new_from_device(keymap, x_.get(), device_) : nullptr;
  if (!state) {
    xkb_keymap_unref(keymap);
    return false;
  }
  xkb_state_unref(std::exchange(state_, state));
  xkb_keymap_unref(std::exchange(keymap_, keymap));
  coreModifiers_ =
      static_cast<std::uint16_t>(xkb_state_serialize_mods(state_, XKB_STATE_MODS_EFFECTIVE));
  return true;
}

XkbKeyboard::Change XkbKeyboard::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != firstEvent_) return Change::none;
  const auto& header = reinterpret_cast<const XkbEventHeader&>(event);
  if (header.deviceID != device_) return Change::none;
  switch (header.xkbType) {
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
      reload();
      return Change::layout;
    case XCB_XKB_STATE_NOTIFY: {
      const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
      const auto before = xkb_state_serialize_layout(state_, XKB_STATE_LAYOUT_EFFECTIVE);
      xkb_state_update_mask(state_, state.baseMods, state.latchedMods, state.lockedMods,
                            static_cast<xkb_layout_index_t>(state.baseGroup),
                            static_cast<xkb_layout_index_t>(state.latchedGroup),
                            static_cast<xkb_layout_index_t>(state.lockedGroup));
      coreModifiers_ = state.mods;
      const auto after = xkb_state_serialize_layout(state_, XKB_STATE_LAYOUT_EFFECTIVE);
      return before == after ? Change::state : Change::layout;
    }
    default:
      return Change::none;
  }
}

xkb_keysym_t XkbKeyboard::firstLevelKeysym(xcb_keycode_t keycode) const {
  const xkb_keysym_t* syms = nullptr;
  const auto layout = xkb_state_key_get_layout(state_, keycode);
  if (layout == XKB_LAYOUT_INVALID) return XKB_KEY_NoSymbol;
  const auto count = xkb_keymap_key_get_syms_by_level(keymap_, keycode, layout, 0, &syms);
  return count > 0 ? syms[0] : XKB_KEY_NoSymbol;
}

std::string XkbKeyboard::characters(xcb_keycode_t keycode) const {
  std::array<char, 8> buffer{};
  const auto size = xkb_keysym_to_utf8(firstLevelKeysym(keycode), buffer.data(), buffer.size());
  return size > 1 ? std::string(buffer.data()) : std::string();
}

NamedKey XkbKeyboard::namedKey(xcb_keycode_t keycode) const {
  const auto sym = firstLevelKeysym(keycode);
  if (sym >= XKB_KEY_F1 && sym <= XKB_KEY_F20) {
    return static_cast<NamedKey>(static_cast<int>(NamedKey::f1) + (sym - XKB_KEY_F1));
  }
  for (const auto& [keysym, named] : namedKeysyms) {
    if (keysym == sym) return named;
  }
  return NamedKey::none;
}

bool XkbKeyboard::isModifierKey(xcb_keycode_t keycode) const {
  const auto sym = firstLevelKeysym(keycode);
  return (sym >= XKB_KEY_Shift_L && sym <= XKB_KEY_Hyper_R) ||
         (sym >= XKB_KEY_ISO_Lock && sym <= XKB_KEY_ISO_Level5_Lock) ||
         sym == XKB_KEY_Mode_switch || sym == XKB_KEY_Num_Lock;
}

std::int64_t XkbKeyboard::modifiers() const {
  std::int64_t mask = 0;
  if (coreModifiers_ & XCB_MOD_MASK_4) mask |= modifier::command;
  if (coreModifiers_ & XCB_MOD_MASK_SHIFT) mask |= modifier::shift;
  if (coreModifiers_ & XCB_MOD_MASK_1) mask |= modifier::option;
  if (coreModifiers_ & XCB_MOD_MASK_CONTROL) mask |= modifier::control;
  return mask;
}

xcb_keycode_t XkbKeyboard::minKeycode() const {
  return static_cast<xcb_keycode_t>(xkb_keymap_min_keycode(keymap_));
}

xcb_keycode_t XkbKeyboard::maxKeycode() const {
  return static_cast<xcb_keycode_t>(std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap_), 255));
}

}  // namespace orlet::x11
