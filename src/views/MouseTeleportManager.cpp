#include "views/MouseTeleportManager.h"

#include <algorithm>

#include "views/MirrorGeometry.h"

namespace orlet {

MouseTeleportManager::MouseTeleportManager(const Ports& ports)
    : ports_(ports),
      timer_(ports.scheduler, ports.windowServer, checkInterval, [this] { checkMousePosition(); }) {
}

void MouseTeleportManager::startMonitoring(std::uint32_t displayId) {
  targetDisplayID_ = displayId;
  forgetPointer();
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
    forgetPointer();
    if (isMouseOnTargetDisplay.get()) publishOnTarget(false);
    return;
  }
  // An unplugged display has empty bounds: nothing to jump to.
  if (!targetDisplayID_ || !(mirrorScreenRect_.width > 0) || targetDisplayBounds_.isEmpty()) {
    forgetPointer();
    return;
  }
  const Seconds now = ports_.scheduler.now();
  if (lastTeleportTime_ && now - *lastTeleportTime_ < teleportCooldown) return;

  const Point p = ports_.windowServer.pointerLocation();
  const bool onTarget = targetDisplayBounds_.contains(p);
  const bool back = bringBackFromEdge(p, onTarget);
  if (back || (!onTarget && enterDisplay(p))) {
    lastTeleportTime_ = now;
    publishOnTarget(!back);
    return;
  }
  if (!isInWayIn(p)) entryRefused_ = false;
  lastPoint_ = p;
  publishOnTarget(onTarget);
}

// Reaching the edge band, or crossing it between two samples onto a neighbouring display, both
// bring the pointer back beside the picture; a crossing has already left the band, so its warp
// is unconditional.
bool MouseTeleportManager::bringBackFromEdge(Point p, bool onTarget) {
  const auto crossing = onTarget ? std::nullopt : crossingOfEdge(p);
  if (!onTarget && !crossing) return false;
  const auto edge = detectEdge(crossing.value_or(p), targetDisplayBounds_);
  if (!edge) return false;
  lastPoint_ = teleportToMirrorEdge(*edge, crossing.value_or(p), crossing.has_value());
  return true;
}

// The focus and coverage tests cost round trips to the X server: they are asked only for a
// pointer moving into the picture, or about a part of it where the way was closed.
bool MouseTeleportManager::enterDisplay(Point p) {
  if (!isInWayIn(p) || !mayEnter(p)) return false;
  const Rect& mirror = mirrorScreenRect_;
  teleportMouse(globalPoint(targetDisplayBounds_, relativePoint(mirror, p)), mirror);
  // Not the landing: a warp refused (the pointer left the picture meanwhile) must not read as a
  // crossing of the display's edge at the next sample.
  lastPoint_ = p;
  return true;
}

// The picture but for a band along its rim: where the picture fills the panel, that band lies
// along the panel's edges, and a pointer reaching for them to resize the panel stays on the
// operator's screen.
bool MouseTeleportManager::isInWayIn(Point p) const {
  const Rect& m = mirrorScreenRect_;
  const Rect inner{m.x + resizeBand, m.y + resizeBand, m.width - 2 * resizeBand,
                   m.height - 2 * resizeBand};
  return inner.contains(p);
}

void MouseTeleportManager::forgetPointer() {
  lastPoint_.reset();
  entryRefused_ = false;
}

// Whether a pointer at `p`, in the picture, has moved into it: from outside the picture, or from
// a part where the way in was closed (covered, or another application in front). A picture
// that appears or grows under a resting pointer (a card just chosen, the mirror just shown)
// is not entered, nor is it by moves about inside it.
bool MouseTeleportManager::mayEnter(Point p) {
  if (!lastPoint_) return false;
  if (*lastPoint_ == p) return false;
  if (isInWayIn(*lastPoint_) && !entryRefused_) return false;
  entryRefused_ = !isCaptureOneOrORLETFocused() || !isPictureVisibleAt(p);
  return !entryRefused_;
}

// The picture is seen at `p` when the front-most window there is the mirror's own. Without
// the window list or the mirror's window, nothing can be judged and the way stays open.
bool MouseTeleportManager::isPictureVisibleAt(Point p) const {
  const auto mine = ports_.mirrorWindow ? ports_.mirrorWindow() : std::nullopt;
  if (!mine) return true;
  const auto windows = ports_.windowServer.onScreenWindows();
  if (!windows) return true;
  for (const auto& window : *windows) {
    if (window.bounds.contains(p)) return window.number == *mine;
  }
  return true;
}

// Where the pointer left the display, on its last row or column, when the last sample had it
// on the display and this one off it: the straight path between the two, cut at the border.
std::optional<Point> MouseTeleportManager::crossingOfEdge(Point p) const {
  const Rect& t = targetDisplayBounds_;
  if (!lastPoint_ || !t.contains(*lastPoint_) || t.contains(p)) return std::nullopt;
  const Point a = *lastPoint_;
  double s = 1.0;  // the share of the path still on the display
  const auto cut = [&s](double from, double to, double border) {
    if (to != from) s = std::min(s, (border - from) / (to - from));
  };
  if (p.x < t.minX()) cut(a.x, p.x, t.minX());
  if (p.x >= t.maxX()) cut(a.x, p.x, t.maxX() - 1);
  if (p.y < t.minY()) cut(a.y, p.y, t.minY());
  if (p.y >= t.maxY()) cut(a.y, p.y, t.maxY() - 1);
  return Point{std::clamp(a.x + s * (p.x - a.x), t.minX(), t.maxX() - 1),
               std::clamp(a.y + s * (p.y - a.y), t.minY(), t.maxY() - 1)};
}

std::optional<MouseTeleportManager::ScreenEdge> MouseTeleportManager::detectEdge(Point p, Rect r) {
  if (p.x <= r.x + edgeMargin) return ScreenEdge::left;
  if (p.x >= r.x + r.width - edgeMargin) return ScreenEdge::right;
  if (p.y <= r.y + edgeMargin) return ScreenEdge::top;
  if (p.y >= r.y + r.height - edgeMargin) return ScreenEdge::bottom;
  return std::nullopt;
}

// Lands outside the picture so the pointer does not enter the mirror again at once; where it
// landed. `unconditional` for a pointer already off the display.
Point MouseTeleportManager::teleportToMirrorEdge(ScreenEdge edge, Point from, bool unconditional) {
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
  teleportMouse(q, unconditional ? std::nullopt : std::optional<Rect>(band));
  return q;
}

// The reading that decided the jump may be a few milliseconds old (the pointer's input can still
// be on its way to us): the jump is made only from where that reading was, or a click the user
// has meanwhile made elsewhere, on the mirror's buttons say, would land on the display instead.
void MouseTeleportManager::teleportMouse(Point to, std::optional<Rect> from) {
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
