#include "capture/DisplayManager.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "capture/AsyncFilter.h"
#include "capture/StreamOutput.h"

namespace orlet {

DisplayManager::DisplayManager(Scheduler& scheduler, CaptureService& service, ClickPorts clicks)
    : scheduler_(scheduler), service_(service), clicks_(clicks) {}

void DisplayManager::sortMainFirst(std::vector<Display>& list) {
  std::stable_sort(list.begin(), list.end(),
                   [](const Display& a, const Display& b) { return a.isMain && !b.isMain; });
}

void DisplayManager::refresh() {
  if (isLoading.get()) return;
  isLoading.set(true);
  service_.shareableContent(lifetime_.guard(
      [this](std::optional<ShareableContent> content, std::optional<CaptureError> error) {
        if (error) {
          isLoading.set(false);  // keep the previous list; failures stay silent
          return;
        }
        const int unreadable = content ? content->unreadableDepth : 0;
        if (unreadable != unreadableDepth.get()) unreadableDepth.set(unreadable);
        auto candidates = content ? std::move(content->displays) : std::vector<Display>{};
        asyncFilter<Display>(
            std::move(candidates),
            [this](const Display& display, std::function<void(bool)> resume) {
              validate(display, std::move(resume));
            },
            lifetime_.guard([this](std::vector<Display> kept) { publish(std::move(kept)); }));
      }));
}

void DisplayManager::publish(std::vector<Display> kept) {
  sortMainFirst(kept);
  displays.set(std::move(kept));
  isLoading.set(false);
}

void DisplayManager::validate(const Display& display, std::function<void(bool)> completion) {
  StreamConfiguration configuration;
  configuration.width = display.width;
  configuration.height = display.height;
  configuration.pixelFormat = pixelFormatBGRA;
  // Its first picture is all a test looks at: a second one within the test period would only read
  // (and hold) another whole display's worth of pixels while something moves on it.
  configuration.minimumFrameInterval = {1, 1};
  auto stream = service_.makeStream(display, configuration);
  auto answered = std::make_shared<bool>(false);
  Finish finish = [this, stream, answered, completion = std::move(completion)](bool valid) {
    if (std::exchange(*answered, true)) return;
    forget(stream);
    completion(valid);
  };
  activeStreams_.push_back({stream, finish});
  // The test runs as its own task, from the next turn on.
  scheduler_.async(lifetime_.guard([this, stream, finish] { runValidation(stream, finish); }));
}

void DisplayManager::runValidation(const std::shared_ptr<CaptureStream>& stream,
                                   const Finish& finish) {
  auto gotPicture = std::make_shared<bool>(false);
  // One-shot: only the first screen sample counts, so a first sample without a picture fails
  // the display even if later ones carry pictures.
  auto output = std::make_shared<StreamOutput>(true, [gotPicture](const SampleBuffer& sample) {
    if (sample.imageBuffer) *gotPicture = true;
  });
  if (stream->addStreamOutput(output, StreamOutputType::screen)) {
    finish(false);
    return;
  }
  stream->startCapture(
      lifetime_.guard([this, stream, gotPicture, finish](std::optional<CaptureError> error) {
        if (error) {
          finish(false);
          return;
        }
        scheduler_.after(testPeriod, lifetime_.guard([this, stream, gotPicture, finish] {
          endTestPeriod(stream, gotPicture, finish);
        }));
      }));
}

void DisplayManager::endTestPeriod(const std::shared_ptr<CaptureStream>& stream,
                                   const std::shared_ptr<bool>& gotPicture, const Finish& finish) {
  // A stream already stopped by stopAll() fails here, so its display is dropped.
  stream->stopCapture(lifetime_.guard(
      [gotPicture, finish](std::optional<CaptureError> error) { finish(!error && *gotPicture); }));
}

void DisplayManager::stopAll() {
  // Answering at once matters when the panel is hidden and shown again quickly: the refresh
  // started at the next showing would otherwise find this one still running, and give way to it.
  for (auto& [stream, finish] : std::exchange(activeStreams_, {})) {
    stream->stopCapture([](std::optional<CaptureError>) {});
    scheduler_.async(lifetime_.guard([finish = std::move(finish)] { finish(false); }));
  }
}

void DisplayManager::forget(const std::shared_ptr<CaptureStream>& stream) {
  std::erase_if(activeStreams_, [&](const auto& test) { return test.stream == stream; });
}

namespace {

// The platform's usual description of a rectangle and a point: origin and size, one decimal.
struct Decimal {
  double value;
};
std::ostream& operator<<(std::ostream& out, Decimal d) {
  const auto flags = out.flags();
  const auto precision = out.precision();
  out << std::fixed;
  out.precision(1);
  out << d.value;
  out.flags(flags);
  out.precision(precision);
  return out;
}

}  // namespace

void DisplayManager::simulateClickOnDisplay(const Display& display, Point relative) {
  if (!clicks_.displayInfo || !clicks_.input) return;
  const Rect bounds = clicks_.displayInfo->bounds(display.displayID);
  const Point target{bounds.x + relative.x * bounds.width, bounds.y + relative.y * bounds.height};
  if (clicks_.diagnostics) {
    *clicks_.diagnostics << "Display bounds: (" << Decimal{bounds.x} << ", " << Decimal{bounds.y}
                         << ", " << Decimal{bounds.width} << ", " << Decimal{bounds.height}
                         << ") → click: (" << Decimal{target.x} << ", " << Decimal{target.y} << ")"
                         << std::endl;
  }
  performMouseClick(target);
}

// The release follows through the main queue instead of blocking the main thread for the
// pause: the two still reach the desktop in order and apart. It holds the input port, not the
// manager, so a manager gone meanwhile never leaves the button held down.
void DisplayManager::performMouseClick(Point target) {
  SyntheticInput& input = *clicks_.input;
  input.leftButtonDown(target);
  scheduler_.after(clickPressDuration, [&input, target] { input.leftButtonUp(target); });
}

}  // namespace orlet
