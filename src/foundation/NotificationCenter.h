#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "foundation/HandlerList.h"
#include "foundation/Subscription.h"

namespace orlet {

// The names the subsystems use to talk to one another; posted with no sender and no payload.
namespace notification {
inline constexpr std::string_view hotkeyPressed = "hotkeyPressed";
inline constexpr std::string_view windowDidShow = "windowDidShow";
inline constexpr std::string_view windowDidHide = "windowDidHide";
inline constexpr std::string_view showBackButton = "showBackButton";
inline constexpr std::string_view hideBackButton = "hideBackButton";
inline constexpr std::string_view backButtonPressed = "backButtonPressed";
}  // namespace notification

// Synchronous, main-thread notification centre: post() runs every observer of the name, in the
// order they registered, before it returns. An observer removed during a post is not called.
class NotificationCenter {
 public:
  using Handler = std::function<void()>;

  NotificationCenter() = default;
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  [[nodiscard]] Subscription observe(std::string_view name, Handler handler);
  void post(std::string_view name);
  std::size_t observerCount(std::string_view name) const;

 private:
  std::map<std::string, HandlerList<>, std::less<>> observers_;
};

}  // namespace orlet
