#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace orlet::x11 {

// Owns an XCB reply (malloc'ed by libxcb); null when the request failed.
struct XcbFree {
  void operator()(void* p) const { std::free(p); }
};
template <class T>
using XcbReply = std::unique_ptr<T, XcbFree>;

// Waits for the reply to `cookie`; an X error (a vanished output, say) gives null.
template <class T, class Cookie, class ReplyFn>
XcbReply<T> waitReply(xcb_connection_t* connection, ReplyFn replyFn, Cookie cookie) {
  xcb_generic_error_t* error = nullptr;
  XcbReply<T> reply(replyFn(connection, cookie, &error));
  std::free(error);
  return reply;
}

}  // namespace orlet::x11
