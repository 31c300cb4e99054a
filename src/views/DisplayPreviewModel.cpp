#include "views/DisplayPreviewModel.h"

#include "views/MirrorGeometry.h"
#include "views/ScreenInfo.h"

namespace orlet {

DisplayPreviewModel::DisplayPreviewModel(Scheduler& scheduler, CaptureService& capture,
                                         const DisplayInfoProvider& displayInfo, Display display,
                                         bool isExpanded, std::function<void()> onBack,
                                         int displayIndex)
    : scheduler_(scheduler),
      capture_(capture),
      display_(std::move(display)),
      isExpanded_(isExpanded),
      onBack_(std::move(onBack)),
      displayIndex_(displayIndex),
      displayInfo_(displayInfo),
      cm_(scheduler, capture),
      lostWatch_(cm_.streamLost.observe([this](bool lost) { watchForReturn(lost); })) {}

std::string DisplayPreviewModel::displayName() const {
  return orlet::displayName(displayIndex_);
}

std::string DisplayPreviewModel::displayDetailedInfo() const {
  return orlet::displayDetailedInfo(getScreenInfo(displayInfo_, display_.displayID), display_.width,
                                    display_.height);
}

Rect DisplayPreviewModel::pictureRect(Size viewSize) const {
  return mirrorPictureRect({double(display_.width), double(display_.height)}, viewSize);
}

void DisplayPreviewModel::addCompanion(std::unique_ptr<PreviewCompanion> companion) {
  companions_.push_back(std::move(companion));
}

void DisplayPreviewModel::appear() {
  cm_.startCapture(display_, framesPerSecond);
  if (!isExpanded_) return;
  for (const auto& companion : companions_) companion->start(display_);
}

void DisplayPreviewModel::disappear() {
  cm_.stopCapture();
  for (const auto& companion : companions_) companion->stop();
}

void DisplayPreviewModel::watchForReturn(bool lost) {
  if (!lost) {
    returnCheck_.cancel();
    return;
  }
  returnCheck_ =
      scheduler_.every(returnCheckInterval, lifetime_.guard([this] { lookForDisplay(); }));
}

// The display comes back under the same id, maybe with another size or place: capture it as it
// is now.
void DisplayPreviewModel::lookForDisplay() {
  if (querying_ || cm_.isCapturing()) return;
  querying_ = true;
  capture_.shareableContent(
      lifetime_.guard([this](std::optional<ShareableContent> content, std::optional<CaptureError>) {
        querying_ = false;
        if (!content || !cm_.streamLost.get() || cm_.isCapturing()) return;
        for (const auto& display : content->displays) {
          if (display.displayID != display_.displayID) continue;
          display_ = display;
          cm_.startCapture(display_, framesPerSecond);
          return;
        }
      }));
}

}  // namespace orlet
