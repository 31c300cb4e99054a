#include "linux/qt/views/MirrorInteraction.h"

#include <memory>

#include "capture/DisplayManager.h"
#include "linux/qt/NativeCoordinates.h"
#include "linux/qt/views/ClickInterceptView.h"
#include "linux/qt/views/CursorOverlayView.h"
#include "linux/qt/views/DisplayPreviewView.h"
#include "views/CursorTracker.h"
#include "views/MouseTeleportManager.h"
#include "views/ScreenPositionTracker.h"

namespace orlet::linux_qt {
namespace {

// The mirror runs a companion it shares with a widget: whichever goes last frees it, so the
// widget (destroyed after the mirror's logic) never observes a tracker that is gone.
template <class T>
class SharedCompanion final : public PreviewCompanion {
 public:
  explicit SharedCompanion(std::shared_ptr<T> companion) : companion_(std::move(companion)) {}
  void start(const Display& display) override { companion_->start(display); }
  void stop() override { companion_->stop(); }

 private:
  std::shared_ptr<T> companion_;
};

std::optional<Rect> rectOnScreen(const QWidget& view) {
  if (!view.isVisible() || !view.window()->isVisible()) return std::nullopt;
  return toNative(QRect(view.mapToGlobal(QPoint(0, 0)), view.size()));
}

// The X client window of the panel holding `view`; none before the panel has one.
std::optional<WindowNumber> windowOf(const QWidget& view) {
  const WId id = view.window()->internalWinId();
  if (id == 0) return std::nullopt;
  return static_cast<WindowNumber>(id);
}

}  // namespace

void makeMirrorInteractive(DisplayPreviewView& mirror, DisplayManager& dm,
                           const MirrorInteractionPorts& ports) {
  auto& model = mirror.model();
  const Display display = model.display();
  mirror.addOverlay(new ClickInterceptView(
      double(display.width) / display.height,
      [&dm, display](Point relative) { dm.simulateClickOnDisplay(display, relative); }));

  auto tracker = std::make_shared<CursorTracker>(ports.scheduler, ports.cursor, ports.windowServer);
  mirror.addOverlay(new CursorOverlayView(tracker, ports.displayInfo, display.displayID));
  model.addCompanion(std::make_unique<SharedCompanion<CursorTracker>>(tracker));

  auto teleport = std::make_unique<MouseTeleportManager>(MouseTeleportManager::Ports{
      ports.scheduler, ports.windowServer, ports.input, ports.editor, ports.displayInfo,
      ports.isWindowVisible, ports.isWindowBeingMoved, [&mirror] { return windowOf(mirror); }});
  auto probe = std::make_unique<ScreenPositionTracker>(ports.scheduler, ports.windowServer,
                                                       *teleport, ports.displayInfo,
                                                       [&mirror] { return rectOnScreen(mirror); });
  model.addCompanion(std::move(teleport));
  model.addCompanion(std::move(probe));
}

}  // namespace orlet::linux_qt
