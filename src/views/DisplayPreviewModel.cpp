#include "views/DisplayPreviewModel.h"

#include "views/MirrorGeometry.h"
#include "views/ScreenInfo.h"

namespace orlet {

DisplayPreviewModel::DisplayPreviewModel(Scheduler& scheduler, CaptureService& capture,
                                         const DisplayInfoProvider& displayInfo, Display display,
                                         bool isExpanded, std::function<void()> onBack,
                                         int displayIndex)
    : display_(std::move(display)),
      isExpanded_(isExpanded),
      onBack_(std::move(onBack)),
      displayIndex_(displayIndex),
      displayInfo_(displayInfo),
      cm_(scheduler, capture) {}

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

}  // namespace orlet
