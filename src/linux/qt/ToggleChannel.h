#pragma once

#include <QLocalServer>
#include <functional>
#include <memory>
#include <string>

namespace orlet::linux_qt {

// `orlet --toggle`: a second process asks the running ORLET of the same session to toggle the
// mirror, as the shortcut does, over a socket only this user can reach. Compositors without a
// global-shortcut protocol bind their own key to that command; anywhere else it serves scripts.
class ToggleChannel {
 public:
  // The socket of this session: in $XDG_RUNTIME_DIR (else /tmp, by user id), named after the
  // display, so that two sessions of one user keep apart.
  static std::string socketPath();

  // Listens for as long as it lives; `toggle` runs on the main thread for each request. A socket
  // left behind by an ORLET that crashed is replaced: the caller already holds the instance lock.
  // Nullptr, with `error` set, when nothing can listen there.
  static std::unique_ptr<ToggleChannel> listen(std::function<void()> toggle, std::string& error);

  // The client side: asks, waits for the answer. False, with `error` set in French, when no ORLET
  // answers.
  static bool request(std::string& error);

 private:
  explicit ToggleChannel(std::function<void()> toggle) : toggle_(std::move(toggle)) {}
  void accept();

  std::function<void()> toggle_;
  QLocalServer server_;
};

}  // namespace orlet::linux_qt
