#pragma once

#include <functional>
#include <string>

#include "foundation/HandlerList.h"
#include "foundation/UserDefaults.h"
#include "window/EditorRule.h"

namespace orlet {

namespace editor_defaults {
// The chosen editor's name; absent or empty: the automatic list.
inline constexpr char name[] = "editorName";
}  // namespace editor_defaults

// The operator's choice of editor, kept in the defaults the moment it changes.
class EditorChoice {
 public:
  explicit EditorChoice(UserDefaults& defaults);
  EditorChoice(const EditorChoice&) = delete;
  EditorChoice& operator=(const EditorChoice&) = delete;

  const EditorRule& rule() const { return rule_; }
  // An empty name goes back to the automatic list. Saved, then the observers run.
  void choose(const std::string& name);

  [[nodiscard]] Subscription observe(std::function<void()> handler) const {
    return observers_.add(std::move(handler));
  }

 private:
  UserDefaults& defaults_;
  EditorRule rule_;
  mutable HandlerList<> observers_;
};

}  // namespace orlet
