#include "app/StatusMenu.h"

namespace orlet {
namespace {

constexpr double iconSide = 18;
constexpr double squareInset = 4.5;
constexpr double squareSide = 9;
constexpr double squareRadius = 1;
constexpr double crossWidth = 0.7;

MenuItem item(std::string title, std::function<void()> action) {
  MenuItem entry;
  entry.title = std::move(title);
  entry.action = std::move(action);
  return entry;
}

DrawingCommand crossLine(Point from, Point to) {
  DrawingCommand line;
  line.kind = DrawingCommand::Kind::strokeLine;
  line.from = from;
  line.to = to;
  line.lineWidth = crossWidth;
  line.color = Color::black();
  return line;
}

}  // namespace

std::shared_ptr<const Menu> makeStatusMenu(const AppMenuActions& actions,
                                           Application& application) {
  auto menu = std::make_shared<Menu>();
  menu->items = {item("Paramètres…", [&actions] { actions.openSettings(); }), MenuItem::separator(),
                 item("Mise à jour…", [&actions] { actions.checkForUpdates(); }),
                 MenuItem::separator(),
                 item("Quitter", [&application] { application.terminate(); })};
  return menu;
}

// The motif is symmetric about both centre lines, so these top-left coordinates draw the same
// picture as bottom-left ones would.
Drawing statusItemIcon() {
  DrawingCommand disc;
  disc.kind = DrawingCommand::Kind::fillEllipse;
  disc.rect = {0, 0, iconSide, iconSide};
  disc.color = Color::black();

  DrawingCommand square;
  square.kind = DrawingCommand::Kind::fillRoundedRect;
  square.rect = {squareInset, squareInset, squareSide, squareSide};
  square.cornerRadius = squareRadius;
  square.color = Color::white();

  const double middle = iconSide / 2;
  const double far = squareInset + squareSide;
  return {{iconSide, iconSide},
          {disc, square, crossLine({middle, squareInset}, {middle, far}),
           crossLine({squareInset, middle}, {far, middle})}};
}

}  // namespace orlet
