#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "platform/KeyboardHook.h"

namespace orlet::test {

// The session's keyboard: typed keys go to the watchers and, unless a swallow or a taken
// keyboard keeps them, to the front application, which remembers them.
class FakeKeyboardHook final : public KeyboardHook {
 public:
  Subscription watch(Handler handler) override { return watchers_.add(std::move(handler)); }
  std::optional<Subscription> swallow(const std::set<std::string>& names,
                                      std::int64_t modifiers) override;
  Subscription takeKeyboard() override;

  // The key events of a key going down and then up.
  void down(const std::string& characters, std::int64_t modifiers = 0,
            NamedKey named = NamedKey::none, bool isRepeat = false);
  void up(const std::string& characters, std::int64_t modifiers = 0,
          NamedKey named = NamedKey::none);
  void modifiersChange(std::int64_t modifiers);
  void type(const KeyEvent& event);

  // Keys another program holds: swallowing one of them is refused.
  std::set<std::string> heldElsewhere;
  // What reached the front application, one "K↓" or "K↑" (the characters) per event.
  std::vector<std::string> delivered;
  bool isKeyboardTaken() const { return *taken_ > 0; }
  // The keys swallowed now, each as "NAME@mask".
  std::set<std::string> swallowedKeys() const;

 private:
  struct Grab {
    std::set<std::string> names;
    std::int64_t modifiers;
  };
  bool isSwallowed(const KeyEvent& event) const;

  HandlerList<const KeyEvent&> watchers_;
  std::shared_ptr<std::vector<std::shared_ptr<Grab>>> grabs_ =
      std::make_shared<std::vector<std::shared_ptr<Grab>>>();
  std::shared_ptr<int> taken_ = std::make_shared<int>(0);
};

}  // namespace orlet::test
