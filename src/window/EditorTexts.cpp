#include "window/EditorTexts.h"

namespace orlet::editor_texts {

std::string pinToolTip(const std::optional<std::string>& editorName) {
  return "Épingler la fenêtre (rester visible quand " + editorName.value_or("votre éditeur photo") +
         " est au premier plan)";
}

std::string description(const std::optional<std::string>& editorName) {
  return "Miniature vivante et cliquable d'un écran, à côté de " +
         editorName.value_or("votre éditeur photo");
}

}  // namespace orlet::editor_texts
