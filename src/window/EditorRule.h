#pragma once

#include <string>
#include <string_view>

namespace orlet {

// Which applications count as the photo editor the mirror works beside, judged by the name the
// desktop gives an application, lower-cased. Automatic: Capture One (any name containing
// "capture one") and the raw developers and tethering tools packaged for Linux. Chosen: the one
// application of that name, whether or not it is still installed.
class EditorRule {
 public:
  EditorRule() = default;  // automatic
  static EditorRule chosen(std::string_view name);

  bool isAutomatic() const { return chosenName_.empty(); }
  // As the operator chose it, in its own case; empty when automatic.
  const std::string& chosenName() const { return chosenName_; }

  bool matches(std::string_view lowercasedName) const;
  // The automatic list alone.
  static bool isKnownEditor(std::string_view lowercasedName);
  static bool isCaptureOne(std::string_view lowercasedName);

  friend bool operator==(const EditorRule&, const EditorRule&) = default;

 private:
  std::string chosenName_;
  std::string chosenLowercased_;
};

}  // namespace orlet
