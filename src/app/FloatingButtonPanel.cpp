#include "app/FloatingButtonPanel.h"

#include "window/ScreenPlacement.h"

namespace orlet {
namespace {

constexpr double squareSide = 20;
constexpr double squareRadius = 2;
constexpr double barThickness = 1.5;

// A rectangle of the given size centred in the button.
Rect centred(Size inner) {
  const auto& outer = FloatingButtonPanel::size;
  return {(outer.width - inner.width) / 2, (outer.height - inner.height) / 2, inner.width,
          inner.height};
}

DrawingCommand fill(DrawingCommand::Kind kind, Rect rect, Color color, double radius = 0) {
  DrawingCommand command;
  command.kind = kind;
  command.rect = rect;
  command.cornerRadius = radius;
  command.color = color;
  return command;
}

}  // namespace

PanelConfig FloatingButtonPanel::config() {
  return {.content = PanelContent::floatingButton,
          .contentSize = size,
          .minimumSize = std::nullopt,
          .level = PanelLevel::floating,
          .resizable = false,
          .movableByBackground = true,
          .joinsAllSpaces = true,
          .hasShadow = false,
          .face = face(),
          .toolTip = toolTip};
}

Drawing FloatingButtonPanel::face() {
  using Kind = DrawingCommand::Kind;
  return {
      size,
      {fill(Kind::fillEllipse, Rect::from({0, 0}, size), Color::black()),
       fill(Kind::fillRoundedRect, centred({squareSide, squareSide}), Color::white(), squareRadius),
       fill(Kind::fillRect, centred({barThickness, squareSide}), Color::black()),
       fill(Kind::fillRect, centred({squareSide, barThickness}), Color::black())}};
}

void FloatingButtonPanel::restorePosition(Panel& panel, const UserDefaults& defaults,
                                          const std::vector<ScreenArea>& screens) {
  const auto x = defaults.number(button_defaults::x);
  const auto y = defaults.number(button_defaults::y);
  if (x && y && liesOnAScreen(Rect::from({*x, *y}, size), screens)) {
    panel.setFrameOrigin({*x, *y});
  } else if (const auto corner = mainScreenCorner(screens)) {
    panel.setFrameOrigin(*corner);
  }
}

void FloatingButtonPanel::savePosition(const Panel& panel, UserDefaults& defaults) {
  const auto origin = panel.frame().origin();
  defaults.set(button_defaults::x, origin.x);
  defaults.set(button_defaults::y, origin.y);
}

}  // namespace orlet
