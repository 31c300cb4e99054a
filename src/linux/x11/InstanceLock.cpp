#include "linux/x11/InstanceLock.h"

#include <unistd.h>

#include <string>
#include <thread>

#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

xcb_atom_t selectionAtom(const XConnection& x) {
  return x.atom("ORLET_S" + std::to_string(x.screenNumber()));
}

xcb_window_t selectionOwner(const XConnection& x, xcb_atom_t selection) {
  const auto reply = waitReply<xcb_get_selection_owner_reply_t>(
      x.get(), xcb_get_selection_owner_reply, xcb_get_selection_owner(x.get(), selection));
  return reply ? reply->owner : XCB_NONE;
}

// An input-only window nobody sees, carrying our pid so that a second instance can name us.
xcb_window_t createOwnerWindow(const XConnection& x) {
  const xcb_window_t window = xcb_generate_id(x.get());
  const std::uint32_t overrideRedirect = 1;
  xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, window, x.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                    &overrideRedirect);
  xcb_ewmh_set_wm_pid(&x.ewmh(), window, static_cast<std::uint32_t>(getpid()));
  return window;
}

std::optional<pid_t> pidOf(const XConnection& x, xcb_window_t window) {
  std::uint32_t pid = 0;
  if (!xcb_ewmh_get_wm_pid_reply(&x.ewmh(), xcb_ewmh_get_wm_pid(&x.ewmh(), window), &pid,
                                 nullptr)) {
    return std::nullopt;
  }
  return static_cast<pid_t>(pid);
}

}  // namespace

std::unique_ptr<InstanceLock> InstanceLock::acquire(const XConnection& x, Holder* holder) {
  const xcb_atom_t selection = selectionAtom(x);
  const xcb_window_t window = createOwnerWindow(x);
  xcb_grab_server(x.get());
  const xcb_window_t owner = selectionOwner(x, selection);
  if (owner == XCB_NONE) xcb_set_selection_owner(x.get(), window, selection, XCB_CURRENT_TIME);
  xcb_ungrab_server(x.get());
  if (owner == XCB_NONE && selectionOwner(x, selection) == window) {
    return std::unique_ptr<InstanceLock>(new InstanceLock(x.get(), window));
  }
  xcb_destroy_window(x.get(), window);
  if (holder) holder->pid = owner == XCB_NONE ? std::nullopt : pidOf(x, owner);
  x.flush();
  return nullptr;
}

std::unique_ptr<InstanceLock> InstanceLock::acquireAfter(const XConnection& x, pid_t predecessor,
                                                         std::chrono::milliseconds patience,
                                                         Holder* holder,
                                                         const std::function<void()>& waiting) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (bool told = false;; told = true) {
    Holder held;
    if (auto lock = acquire(x, &held)) return lock;
    if (holder) *holder = held;
    if (held.pid != predecessor || std::chrono::steady_clock::now() >= deadline) return nullptr;
    if (!told && waiting) waiting();
    // Nothing else to do before the screen is ours; the predecessor quits within milliseconds.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

InstanceLock::~InstanceLock() {
  xcb_destroy_window(connection_, window_);
  xcb_flush(connection_);
}

}  // namespace orlet::x11
