#include "linux/x11/X11PressWatcher.h"

#include <xcb/xinput.h>

#include <cstdlib>

#include "linux/x11/XcbReply.h"

namespace orlet::x11 {
namespace {

bool isWheel(std::uint32_t button) {
  return button >= 4 && button <= 7;
}

bool hasRawEvents(xcb_connection_t* c) {
  const auto* extension = xcb_get_extension_data(c, &xcb_input_id);
  if (!extension || !extension->present) return false;
  const auto version = waitReply<xcb_input_xi_query_version_reply_t>(
      c, xcb_input_xi_query_version_reply, xcb_input_xi_query_version(c, 2, 2));
  return version && (version->major_version > 2 ||
                     (version->major_version == 2 && version->minor_version >= 1));
}

}  // namespace

std::unique_ptr<X11PressWatcher> X11PressWatcher::open(const char* display) {
  int screenNumber = 0;
  xcb_connection_t* c = xcb_connect(display, &screenNumber);
  if (xcb_connection_has_error(c) || !hasRawEvents(c)) {
    xcb_disconnect(c);
    return nullptr;
  }
  auto watcher = std::unique_ptr<X11PressWatcher>(new X11PressWatcher(c));
  auto it = xcb_setup_roots_iterator(xcb_get_setup(c));
  for (int i = 0; i < screenNumber && it.rem; ++i) xcb_screen_next(&it);
  watcher->root_ = it.data->root;
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t bits;
  } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
  xcb_input_xi_select_events(c, watcher->root_, 1, &mask.head);
  xcb_flush(c);
  return watcher;
}

X11PressWatcher::X11PressWatcher(xcb_connection_t* connection) : connection_(connection) {}

X11PressWatcher::~X11PressWatcher() {
  xcb_disconnect(connection_);
}

int X11PressWatcher::fileDescriptor() const {
  return xcb_get_file_descriptor(connection_);
}

std::optional<Point> X11PressWatcher::takePress() {
  bool pressed = false;
  while (auto* event = xcb_poll_for_event(connection_)) {
    if ((event->response_type & 0x7f) == XCB_GE_GENERIC) {
      const auto* raw = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(event);
      if (raw->event_type == XCB_INPUT_RAW_BUTTON_PRESS && !isWheel(raw->detail)) pressed = true;
    }
    std::free(event);
  }
  if (!pressed) return std::nullopt;
  const auto pointer = waitReply<xcb_query_pointer_reply_t>(connection_, xcb_query_pointer_reply,
                                                            xcb_query_pointer(connection_, root_));
  // Whatever came in while the answer was awaited waits in the library's queue, where the
  // socket notifier would never see it: presses that follow this one, dropped with it.
  while (auto* event = xcb_poll_for_queued_event(connection_)) std::free(event);
  if (!pointer) return std::nullopt;
  return Point{double(pointer->root_x), double(pointer->root_y)};
}

}  // namespace orlet::x11
