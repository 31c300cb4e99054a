#pragma once

#include <string>

#include "window/CaptureOneFocus.h"

namespace orlet {

// What the logic needs to know about the application in front.
struct FrontApplication {
  std::string nameLowercased;  // empty when there is no front application or it has no name
  bool isOurs = false;
  bool isEditor = false;

  // Ours when its identifier equals our own, both compared as optional values: two absent
  // identifiers count as equal, so with no front application and no identifier of our own the
  // front counts as ours.
  static FrontApplication read(const CaptureOneFocus& editor);
};

}  // namespace orlet
