#pragma once

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "linux/x11/XConnection.h"

namespace orlet::test {

// A connection to the test server named by DISPLAY, with the RandR helpers the tests need to
// find outputs by connector name and to dress them up as real monitors.
class XcbTestConnection {
 public:
  XcbTestConnection() {
    std::string error;
    x_ = x11::XConnection::open(nullptr, &error);
    if (!x_) throw std::runtime_error(error);
    connection_ = x_->get();
    root_ = x_->root();
  }

  const x11::XConnection& x() const { return *x_; }

  xcb_randr_output_t output(const std::string& name) const {
    auto* resources = xcb_randr_get_screen_resources_current_reply(
        connection_, xcb_randr_get_screen_resources_current(connection_, root_), nullptr);
    const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources);
    const int count = xcb_randr_get_screen_resources_current_outputs_length(resources);
    xcb_randr_output_t found = XCB_NONE;
    for (int i = 0; i < count && found == XCB_NONE; ++i) {
      auto* info = xcb_randr_get_output_info_reply(
          connection_, xcb_randr_get_output_info(connection_, outputs[i], XCB_CURRENT_TIME),
          nullptr);
      const std::string outputName(reinterpret_cast<char*>(xcb_randr_get_output_info_name(info)),
                                   xcb_randr_get_output_info_name_length(info));
      if (outputName == name) found = outputs[i];
      std::free(info);
    }
    std::free(resources);
    return found;
  }

  // Replaces (or creates) an output property and waits until the server has applied it.
  void setOutputProperty(xcb_randr_output_t output, const std::string& name, xcb_atom_t type,
                         std::uint8_t format, const void* data, std::uint32_t count) const {
    const xcb_atom_t property = x_->atom(name);
    auto cookie = xcb_randr_change_output_property_checked(
        connection_, output, property, type, format, XCB_PROP_MODE_REPLACE, count, data);
    if (auto* error = xcb_request_check(connection_, cookie)) {
      std::free(error);
      throw std::runtime_error("cannot set output property " + name);
    }
  }
  void setBytes(xcb_randr_output_t output, const std::string& name,
                const std::vector<std::uint8_t>& bytes) const {
    setOutputProperty(output, name, XCB_ATOM_INTEGER, 8, bytes.data(),
                      static_cast<std::uint32_t>(bytes.size()));
  }
  // The physical size the dummy driver reports for an output. The driver takes the new value
  // when the outputs are probed again, which a plain xrandr query does.
  static void setMillimeters(const std::string& output, int width, int height) {
    const std::string command = "xrandr --output " + output + " --set WIDTH_MM " +
                                std::to_string(width) + " --set HEIGHT_MM " +
                                std::to_string(height) + " && xrandr >/dev/null";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(command + " failed");
  }

 private:
  std::unique_ptr<x11::XConnection> x_;
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = XCB_NONE;
};

}  // namespace orlet::test
