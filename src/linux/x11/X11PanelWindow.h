#pragma once

#include "linux/x11/XConnection.h"

namespace orlet::x11 {

// The window-manager side of one of our panel windows: the hints that keep it out of the
// taskbar and off the focus chain, its layer, and its place in the stacking order.
class X11PanelWindow {
 public:
  X11PanelWindow(const XConnection& x, xcb_window_t window) : x_(x), window_(window) {}

  xcb_window_t window() const { return window_; }

  // ICCCM 4.1.7 "No Input" model: input hint False and no WM_TAKE_FOCUS. The toolkit always
  // lists WM_TAKE_FOCUS, and openbox and KWin then focus the window on a click anyway.
  void refuseFocus();

  // Run before every map: a window manager removes _NET_WM_STATE and _NET_WM_DESKTOP when the
  // window is withdrawn (EWMH, openbox does), so they are written again each time.
  void prepareForMap(bool above, bool allDesktops);

  // _NET_WM_STATE_ABOVE on a mapped window, through the window manager (EWMH _NET_WM_STATE
  // client message).
  void setAbove(bool above);

  void raise();
  void lower();
  // Directly above `sibling` (a client window) in the stacking order.
  void restackAbove(xcb_window_t sibling);

  // Ends a move or resize handed to the window manager whose button was released before the
  // window manager took the pointer (EWMH _NET_WM_MOVERESIZE_CANCEL); otherwise it would wait
  // for a release that has already happened, holding pointer and keyboard.
  void cancelMoveResize();

  // _NET_WM_STATE_HIDDEN: minimised (or shaded) by the window manager.
  bool isHidden() const;

 private:
  void restack(xcb_window_t window, xcb_window_t sibling, xcb_stack_mode_t mode,
               bool viaWindowManager);
  // _NET_RESTACK_WINDOW among the window manager's _NET_SUPPORTED atoms.
  bool windowManagerRestacks() const;

  const XConnection& x_;
  xcb_window_t window_;
  bool above_ = false;
};

}  // namespace orlet::x11
