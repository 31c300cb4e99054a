#include "views/MouseTeleportManager.h"

#include "views/MirrorGeometry.h"

namespace orlet {

MouseTeleportManager::MouseTeleportManager(const Ports& ports)
    : ports_(ports),
      timer_(ports.scheduler, ports.windowServer, checkInterval, [this] { checkMousePosition(); }) {
}

void MouseTeleportManager::startMonitoring(std::uint32_t displayId) {
  targetDisplayID_ = displayId;
  targetDisplayBounds_ = ports_.displayInfo.bounds(displayId);
  timer_.start();
}

void MouseTeleportManager::stopMonitoring() {
  timer_.stop();
  targetDisplayID_.reset();
  announced_ = false;
  isMouseOnTargetDisplay.set(false);
}

// Sixty checks a second mostly find what the last one found: only a change is handed on.
void MouseTeleportManager::publishOnTarget(bool onTarget) {
  if (onTarget == announced_) return;
  announced_ = onTarget;
  ports_.scheduler.async(
      lifetime_.guard([this, onTarget] { isMouseOnTargetDisplay.set(onTarget); }));
}

// Every point here is in root coordinates, top-left origin, as the pointer and the rectangles
// are reported: no flip against the main screen's height is needed.
void MouseTeleportManager::checkMousePosition() {
  if (!ports_.isWindowVisible() || ports_.isWindowBeingMoved()) {
    if (isMouseOnTargetDisplay.get()) publishOnTarget(false);
    return;
  }
  // An unplugged display has empty bounds: nothing to jump to.
  if (!targetDisplayID_ || !(mirrorScreenRect_.width > 0) || targetDisplayBounds_.isEmpty()) return;
  const Seconds now = ports_.scheduler.now();
  if (lastTeleportTime_ && now - *lastTeleportTime_ < teleportCooldown) return;

  const Point p = ports_.windowServer.pointerLocation();
  const Rect& target = targetDisplayBounds_;
  const Rect& mirror = mirrorScreenRect_;
  const bool onTarget = target.contains(p);
  const bool inMirror = mirror.contains(p);

  // The focus test changes nothing and costs round trips to the X server: it is asked only
  // when its answer decides something, not sixty times a second.
  if (inMirror && !onTarget && isCaptureOneOrORLETFocused()) {
    teleportMouse(globalPoint(target, relativePoint(mirror, p)), mirror);
    lastTeleportTime_ = now;
    publishOnTarget(true);
    return;
  }
  if (onTarget) {
    if (const auto edge = detectEdge(p, target)) {
      teleportToMirrorEdge(*edge, p);
      lastTeleportTime_ = now;
      publishOnTarget(false);
      return;
    }
  }
  publishOnTarget(onTarget);
}

std::optional<MouseTeleportManager::ScreenEdge> MouseTeleportManager::detectEdge(Point p, Rect r) {
  if (p.x <= r.x + edgeMargin) return ScreenEdge::left;
  if (p.x >= r.x + r.width - edgeMargin) return ScreenEdge::right;
  if (p.y <= r.y + edgeMargin) return ScreenEdge::top;
  if (p.y >= r.y + r.height - edgeMargin) return ScreenEdge::bottom;
  return std::nullopt;
}

// Lands outside the picture so the pointer does not enter the mirror again at once.
void MouseTeleportManager::teleportToMirrorEdge(ScreenEdge edge, Point from) {
  const Rect& target = targetDisplayBounds_;
  const Rect& mirror = mirrorScreenRect_;
  Point q = globalPoint(mirror, relativePoint(target, from));
  // The band along the edge where a pointer counts as on it.
  Rect band = target;
  switch (edge) {
    case ScreenEdge::top:
      q.y = mirror.minY() - landingDistance;
      band.height = edgeMargin + 1;
      break;
    case ScreenEdge::bottom:
      q.y = mirror.maxY() + landingDistance;
      band.y = target.maxY() - edgeMargin;
      band.height = edgeMargin;
      break;
    case ScreenEdge::left:
      q.x = mirror.minX() - landingDistance;
      band.width = edgeMargin + 1;
      break;
    case ScreenEdge::right:
      q.x = mirror.maxX() + landingDistance;
      band.x = target.maxX() - edgeMargin;
      band.width = edgeMargin;
      break;
  }
  teleportMouse(q, band);
}

// The reading that decided the jump may be a few milliseconds old (the pointer's input can still
// be on its way to us): the jump is made only from where that reading was, or a click the user
// has meanwhile made elsewhere, on the mirror's buttons say, would land on the display instead.
void MouseTeleportManager::teleportMouse(Point to, const Rect& from) {
  ports_.input.warpPointer(to, from);
}

// Ours when the identifiers match as optional values (both absent counts as equal), as the
// front-application rule has it; no front application at all is never ours.
bool MouseTeleportManager::isCaptureOneOrORLETFocused() const {
  const auto& workspace = ports_.editor.workspace();
  const auto front = workspace.frontmostApplication();
  if (!front) return false;
  const bool isOurs = front->bundleIdentifier == workspace.mainBundleIdentifier();
  return isOurs || ports_.editor.isEditor(*front);
}

}  // namespace orlet
