#include "linux/wayland/WaylandConnection.h"

#include <algorithm>
#include <cstring>

#include "xdg-output-unstable-v1-client.h"

namespace orlet::wayland {
namespace {

template <class T>
T* bindNow(wl_registry* registry, std::uint32_t name, const wl_interface* interface,
           std::uint32_t offered, std::uint32_t wanted) {
  return static_cast<T*>(wl_registry_bind(registry, name, interface, std::min(offered, wanted)));
}

void outputPosition(void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
  auto& output = *static_cast<WaylandOutput*>(data);
  output.frame.x = x;
  output.frame.y = y;
}

void outputSize(void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
  auto& output = *static_cast<WaylandOutput*>(data);
  output.frame.width = width;
  output.frame.height = height;
}

void outputName(void* data, zxdg_output_v1*, const char* name) {
  static_cast<WaylandOutput*>(data)->name = name;
}

void ignoreDone(void*, zxdg_output_v1*) {}
void ignoreDescription(void*, zxdg_output_v1*, const char*) {}

const zxdg_output_v1_listener xdgOutputListener{outputPosition, outputSize, ignoreDone, outputName,
                                                ignoreDescription};

void ignoreGeometry(void*, wl_output*, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                    std::int32_t, const char*, const char*, std::int32_t) {}
void ignoreMode(void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {}
void ignoreOutputDone(void*, wl_output*) {}
void outputScale(void* data, wl_output*, std::int32_t factor) {
  static_cast<WaylandOutput*>(data)->scale = factor;
}
void ignoreOutputName(void*, wl_output*, const char*) {}
void ignoreOutputDescription(void*, wl_output*, const char*) {}

const wl_output_listener outputListener{ignoreGeometry, ignoreMode,       ignoreOutputDone,
                                        outputScale,    ignoreOutputName, ignoreOutputDescription};

}  // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::connect(const std::string& name,
                                                              std::string& error) {
  auto* display = wl_display_connect(name.empty() ? nullptr : name.c_str());
  if (!display) {
    error = "aucun compositeur Wayland ne répond";
    return nullptr;
  }
  std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
  static const wl_registry_listener listener{&WaylandConnection::global,
                                             &WaylandConnection::globalRemove};
  connection->registry_ = wl_display_get_registry(display);
  wl_registry_add_listener(connection->registry_, &listener, connection.get());
  // The globals first, then what each output says of itself.
  if (!connection->roundtrip() || !connection->roundtrip()) {
    error = "le compositeur Wayland a fermé la connexion";
    return nullptr;
  }
  return connection;
}

WaylandConnection::~WaylandConnection() {
  for (auto& output : outputs_) {
    if (output->xdgOutput) zxdg_output_v1_destroy(output->xdgOutput);
    wl_output_destroy(output->output);
  }
  if (xdgOutputs_) zxdg_output_manager_v1_destroy(xdgOutputs_);
  if (seat_) wl_seat_destroy(seat_);
  if (registry_) wl_registry_destroy(registry_);
  wl_display_disconnect(display_);
}

void WaylandConnection::global(void* data, wl_registry* registry, std::uint32_t name,
                               const char* interface, std::uint32_t version) {
  auto& self = *static_cast<WaylandConnection*>(data);
  const auto is = [interface](const wl_interface& i) {
    return std::strcmp(interface, i.name) == 0;
  };
  if (is(wl_seat_interface) && !self.seat_) {
    self.seat_ = bindNow<wl_seat>(registry, name, &wl_seat_interface, version, 7);
  } else if (is(wl_output_interface)) {
    auto output = std::make_unique<WaylandOutput>();
    output->globalName = name;
    output->output = bindNow<wl_output>(registry, name, &wl_output_interface, version, 3);
    wl_output_add_listener(output->output, &outputListener, output.get());
    self.outputs_.push_back(std::move(output));
    if (self.xdgOutputs_) self.describe(*self.outputs_.back());
  } else if (is(zxdg_output_manager_v1_interface)) {
    self.xdgOutputs_ = bindNow<zxdg_output_manager_v1>(
        registry, name, &zxdg_output_manager_v1_interface, version, 3);
    for (auto& output : self.outputs_) self.describe(*output);
  }
  self.globals_.push_back({name, interface, version});
}

void WaylandConnection::globalRemove(void* data, wl_registry*, std::uint32_t name) {
  auto& self = *static_cast<WaylandConnection*>(data);
  std::erase_if(self.globals_, [name](const Global& g) { return g.name == name; });
  auto& outputs = self.outputs_;
  std::erase_if(outputs, [name](const auto& output) {
    if (output->globalName != name) return false;
    if (output->xdgOutput) zxdg_output_v1_destroy(output->xdgOutput);
    wl_output_destroy(output->output);
    return true;
  });
}

void WaylandConnection::describe(WaylandOutput& output) {
  if (output.xdgOutput) return;
  output.xdgOutput = zxdg_output_manager_v1_get_xdg_output(xdgOutputs_, output.output);
  zxdg_output_v1_add_listener(output.xdgOutput, &xdgOutputListener, &output);
}

bool WaylandConnection::offers(const wl_interface& interface) const {
  return std::ranges::any_of(globals_,
                             [&](const Global& g) { return g.interface == interface.name; });
}

void* WaylandConnection::bind(const wl_interface& interface, std::uint32_t version) {
  for (const auto& g : globals_) {
    if (g.interface == interface.name) {
      return wl_registry_bind(registry_, g.name, &interface, std::min(g.version, version));
    }
  }
  return nullptr;
}

bool WaylandConnection::dispatch() {
  return wl_display_dispatch(display_) >= 0;
}

bool WaylandConnection::roundtrip() {
  return wl_display_roundtrip(display_) >= 0;
}

Rect WaylandConnection::layout() const {
  if (outputs_.empty()) return {};
  double left = outputs_.front()->frame.minX(), top = outputs_.front()->frame.minY();
  double right = outputs_.front()->frame.maxX(), bottom = outputs_.front()->frame.maxY();
  for (const auto& output : outputs_) {
    left = std::min(left, output->frame.minX());
    top = std::min(top, output->frame.minY());
    right = std::max(right, output->frame.maxX());
    bottom = std::max(bottom, output->frame.maxY());
  }
  return {left, top, right - left, bottom - top};
}

}  // namespace orlet::wayland
