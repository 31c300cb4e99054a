#include "linux/wayland/WlrCaptureService.h"

#include <algorithm>

#include "linux/capture/ThreadedCaptureStream.h"

namespace orlet::wayland {

WlrCaptureService::WlrCaptureService(Scheduler& scheduler, WaylandConnection& connection,
                                     std::string displayName)
    : scheduler_(scheduler), connection_(connection), displayName_(std::move(displayName)) {}

// Streams may still be held: their threads end here all the same.
WlrCaptureService::~WlrCaptureService() {
  threads_->close();
}

DisplayID WlrCaptureService::idOf(const std::string& outputName) {
  std::uint32_t hash = 2166136261u;  // FNV-1a
  for (const unsigned char c : outputName) hash = (hash ^ c) * 16777619u;
  return hash == 0 ? 1 : hash;
}

// The outputs as the compositor lays them out now; the one at the layout's origin is the main
// one (Wayland has no primary output), else the first.
void WlrCaptureService::shareableContent(
    std::function<void(std::optional<ShareableContent>, std::optional<CaptureError>)> completion) {
  scheduler_.async([this, completion = std::move(completion)] {
    if (!connection_.roundtrip()) {
      return completion(std::nullopt, CaptureError{"le compositeur Wayland a fermé la connexion"});
    }
    ShareableContent content;
    for (const auto& output : connection_.outputs()) {
      if (output->frame.isEmpty() || output->name.empty()) continue;
      content.displays.push_back({idOf(output->name), int(output->frame.width) * output->scale,
                                  int(output->frame.height) * output->scale, output->frame,
                                  output->frame.origin() == Point{0, 0}});
    }
    if (!content.displays.empty() && std::ranges::none_of(content.displays, &Display::isMain)) {
      content.displays.front().isMain = true;
    }
    completion(content, std::nullopt);
  });
}

std::shared_ptr<CaptureStream> WlrCaptureService::makeStream(
    const Display& display, const StreamConfiguration& configuration) {
  return std::make_shared<linux_capture::ThreadedCaptureStream>(
      scheduler_, threads_, &runWlrGrabber, nullptr, displayName_, display, configuration);
}

}  // namespace orlet::wayland
