#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orlet {

struct MenuItem {
  std::string title;
  std::string keyEquivalent;  // empty: no shortcut
  std::function<void()> action;
  bool isSeparator = false;

  static MenuItem separator() {
    MenuItem item;
    item.isSeparator = true;
    return item;
  }
};

struct Menu {
  std::vector<MenuItem> items;
};

}  // namespace orlet
