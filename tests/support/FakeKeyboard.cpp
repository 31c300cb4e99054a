#include "support/FakeKeyboard.h"

#include <algorithm>

#include "foundation/UpperCase.h"

namespace orlet::test {

std::optional<Subscription> FakeKeyboardHook::swallow(const std::set<std::string>& names,
                                                      std::int64_t modifiers) {
  for (const auto& name : names) {
    if (heldElsewhere.contains(name)) return std::nullopt;
  }
  auto grab = std::make_shared<Grab>(Grab{names, modifiers});
  grabs_->push_back(grab);
  return Subscription([grabs = std::weak_ptr(grabs_), grab] {
    if (auto list = grabs.lock()) std::erase(*list, grab);
  });
}

Subscription FakeKeyboardHook::takeKeyboard() {
  ++*taken_;
  return Subscription([taken = std::weak_ptr(taken_)] {
    if (auto count = taken.lock()) --*count;
  });
}

void FakeKeyboardHook::down(const std::string& characters, std::int64_t modifiers, NamedKey named,
                            bool isRepeat) {
  type({KeyEventType::keyDown, characters, named, modifiers, isRepeat});
}

void FakeKeyboardHook::up(const std::string& characters, std::int64_t modifiers, NamedKey named) {
  type({KeyEventType::keyUp, characters, named, modifiers, false});
}

void FakeKeyboardHook::modifiersChange(std::int64_t modifiers) {
  type({KeyEventType::modifiersChanged, "", NamedKey::none, modifiers, false});
}

void FakeKeyboardHook::type(const KeyEvent& event) {
  const bool swallowed = isSwallowed(event);
  watchers_.call(event);
  if (swallowed || event.type == KeyEventType::modifiersChanged) return;
  delivered.push_back(event.characters + (event.type == KeyEventType::keyDown ? "↓" : "↑"));
}

bool FakeKeyboardHook::isSwallowed(const KeyEvent& event) const {
  if (*taken_ > 0) return true;
  const auto name = upperCased(event.characters);
  return std::any_of(grabs_->begin(), grabs_->end(), [&](const auto& grab) {
    return grab->modifiers == event.modifiers && grab->names.contains(name);
  });
}

std::set<std::string> FakeKeyboardHook::swallowedKeys() const {
  std::set<std::string> keys;
  for (const auto& grab : *grabs_) {
    for (const auto& name : grab->names) keys.insert(name + "@" + std::to_string(grab->modifiers));
  }
  return keys;
}

}  // namespace orlet::test
