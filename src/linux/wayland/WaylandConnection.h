#pragma once

#include <wayland-client.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Geometry.h"

struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace orlet::wayland {

// An output as the compositor lays it out: position and size in the layout's (logical)
// coordinates, which are the global coordinates of a Wayland session.
struct WaylandOutput {
  wl_output* output = nullptr;
  zxdg_output_v1* xdgOutput = nullptr;
  std::uint32_t globalName = 0;
  std::string name;  // the connector, e.g. "HEADLESS-2"
  Rect frame;
  int scale = 1;
};

// A client connection to a Wayland compositor with the globals ORLET binds: the seat, the
// outputs, and the wlroots protocols that let a client see and act on the whole desktop. Main
// thread only; whoever owns it dispatches it when its descriptor is readable.
class WaylandConnection {
 public:
  // `name` as in $WAYLAND_DISPLAY (empty: that variable). Nullptr, with `error` set, when no
  // compositor answers.
  static std::unique_ptr<WaylandConnection> connect(const std::string& name, std::string& error);
  WaylandConnection(const WaylandConnection&) = delete;
  WaylandConnection& operator=(const WaylandConnection&) = delete;
  ~WaylandConnection();

  wl_display* display() const { return display_; }
  int fd() const { return wl_display_get_fd(display_); }
  // Reads what the compositor sent and runs its handlers; false once the connection is lost.
  bool dispatch();
  // Waits until the compositor has handled every request so far, running the handlers of what
  // it sent meanwhile; false once the connection is lost.
  bool roundtrip();
  void flush() { wl_display_flush(display_); }

  wl_seat* seat() const { return seat_; }
  // Whether the compositor offers `interface`.
  bool offers(const wl_interface& interface) const;
  // Binds a global of `interface` now, at most at `version`; nullptr when none is offered. Bound
  // by whoever listens to it, lest what the compositor says at once be lost unheard.
  void* bind(const wl_interface& interface, std::uint32_t version);
  const std::vector<std::unique_ptr<WaylandOutput>>& outputs() const { return outputs_; }
  // The smallest rectangle holding every output.
  Rect layout() const;

 private:
  explicit WaylandConnection(wl_display* display) : display_(display) {}
  static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                     std::uint32_t version);
  static void globalRemove(void* data, wl_registry* registry, std::uint32_t name);
  void describe(WaylandOutput& output);

  struct Global {
    std::uint32_t name;
    std::string interface;
    std::uint32_t version;
  };

  wl_display* display_;
  wl_registry* registry_ = nullptr;
  wl_seat* seat_ = nullptr;
  zxdg_output_manager_v1* xdgOutputs_ = nullptr;
  std::vector<Global> globals_;
  std::vector<std::unique_ptr<WaylandOutput>> outputs_;
};

}  // namespace orlet::wayland
