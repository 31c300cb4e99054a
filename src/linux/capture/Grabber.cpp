#include "linux/capture/Grabber.h"

#include <poll.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/randr.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "capture/PixelRect.h"
#include "foundation/RenderCounters.h"
#include "linux/capture/Monitors.h"
#include "linux/capture/PixelReader.h"
#include "linux/capture/RootFormat.h"
#include "linux/capture/SharedMemory.h"
#include "linux/capture/Xcb.h"

namespace orlet::linux_capture {
namespace {

using Clock = std::chrono::steady_clock;

// Past this many changed rectangles, one read of their bounding box is cheaper.
constexpr std::size_t maxRectsPerRead = 16;
// Reads that fail this many times in a row, with the display still listed, end the capture.
constexpr int maxFailedReads = 5;

class Grabber {
 public:
  Grabber(const GrabberSettings& settings, const GrabberEvents& events)
      : settings_(settings), events_(events) {
    interval_ = std::chrono::duration_cast<Clock::duration>(settings.minimumInterval);
  }
  ~Grabber() {
    reader_.reset();  // detaches shared memory while the connection is still open
  }

  std::optional<CaptureError> setUp();
  std::optional<CaptureError> run();
  bool announced() const { return announced_; }
  bool displayMissing() const { return displayMissing_; }

 private:
  std::optional<std::string> checkPixelFormat() const;
  void setUpDamage();
  std::optional<std::string> locate(bool initial);
  void drainEvents();
  std::optional<CaptureError> grab();
  void advanceDeadline(Clock::time_point now);
  bool hasWork() const { return dirty_ || !carried_.empty(); }
  bool sleepUntil(Clock::time_point deadline);
  bool waitForInput();
  bool wake(pollfd* fds, std::size_t count, const timespec* timeout);
  std::optional<std::string> resize();

  const GrabberSettings& settings_;
  const GrabberEvents& events_;
  std::unique_ptr<XcbConnection> connection_;
  std::unique_ptr<PixelReader> reader_;
  bool randr15_ = false;
  std::uint8_t randrFirstEvent_ = 0;
  std::uint8_t damageFirstEvent_ = 0;
  xcb_damage_damage_t damage_ = XCB_NONE;
  bool dirty_ = false;  // without DAMAGE: read everything at every deadline
  bool monitorsChanged_ = false;
  std::vector<PixelRect> carried_;  // changes reported (global) or left unread (area-relative)
  int failedReads_ = 0;
  bool announced_ = false;       // the start was reported
  bool displayMissing_ = false;  // the display was not among the monitors when last looked for
  Clock::duration interval_;
  Clock::time_point nextDeadline_ = Clock::now();
  std::uint64_t pictureSize_ = 0;  // the size the reader delivers (PictureSize::packed)
};

// A 30-bit root is narrowed to eight bits a channel by the reader; a format that cannot be read
// is refused with its reason rather than shown as noise.
std::optional<std::string> Grabber::checkPixelFormat() const {
  return unreadableRootFormat(*xcb_get_setup(connection_->get()), connection_->screen());
}

std::optional<CaptureError> Grabber::setUp() {
  std::string error;
  connection_ = XcbConnection::open(
      settings_.displayName.empty() ? nullptr : settings_.displayName.c_str(), error);
  if (!connection_) return CaptureError{error};
  if (auto failure = checkPixelFormat()) return CaptureError{*failure};
  randr15_ = initRandr(*connection_);
  if (randr15_) {
    connection_->hasExtension(&xcb_randr_id, &randrFirstEvent_);
    // Notifications of output and CRTC changes tell us when our monitor goes away or moves.
    const std::uint16_t mask = XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE;
    if (auto failure = connection_->check(
            xcb_randr_select_input_checked(connection_->get(), connection_->root(), mask),
            "RandR SelectInput")) {
      return CaptureError{*failure};
    }
  }
  std::string why;
  const bool useShm = SharedMemory::usable(*connection_, why);
  // Said once: every stream of the session would find the same.
  static std::atomic<bool> told{false};
  if (!useShm && !told.exchange(true))
    std::fprintf(stderr, "orlet: %s ; l'écran est lu par GetImage\n", why.c_str());
  reader_ = std::make_unique<PixelReader>(*connection_, useShm, settings_.memory);
  if (auto failure = locate(true)) return CaptureError{*failure};
  setUpDamage();
  return std::nullopt;
}

void Grabber::setUpDamage() {
  auto* c = connection_->get();
  Reply<xcb_damage_query_version_reply_t> version;
  // DAMAGE refuses requests from a client that has not announced its version.
  if (connection_->hasExtension(&xcb_damage_id, &damageFirstEvent_)) {
    version.reset(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
  }
  if (!version) {
    std::fprintf(stderr, "orlet: le serveur X n'a pas DAMAGE ; chaque image est lue entière\n");
    dirty_ = true;
    return;
  }
  damage_ = xcb_generate_id(c);
  // Raw rectangles: each change arrives as an event carrying its rectangle, and the server keeps
  // no damage region for us, so taking the changes costs no round trip. Between frames we do
  // not read the connection: the events wait in the socket and cost no wake-up.
  if (auto failure =
          connection_->check(xcb_damage_create_checked(c, damage_, connection_->root(),
                                                       XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES),
                             "DAMAGE Create")) {
    std::fprintf(stderr, "orlet: %s ; chaque image est lue entière\n", failure->c_str());
    damage_ = XCB_NONE;
    dirty_ = true;
  }
}

std::optional<std::string> Grabber::locate(bool initial) {
  std::string error;
  auto displays = queryDisplays(*connection_, randr15_, error);
  if (!displays) return error;
  for (const auto& display : *displays) {
    if (display.displayID != settings_.displayID) continue;
    const PixelRect area{int(display.frame.x), int(display.frame.y), display.width, display.height};
    if (initial || area != reader_->area()) {
      const auto& size = settings_.pictureSize;
      pictureSize_ = size ? size->packed() : 0;
      if (!reader_->configure(area, size ? size->width() : 0, size ? size->height() : 0, error)) {
        return error;
      }
      carried_ = {area};  // read all of it
    }
    return std::nullopt;
  }
  displayMissing_ = true;
  return initial ? "no such display" : "the display went away";
}

void Grabber::drainEvents() {
  while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
    const std::uint8_t type = event->response_type & 0x7f;
    if (damage_ != XCB_NONE && type == damageFirstEvent_ + XCB_DAMAGE_NOTIFY) {
      const auto& notify = reinterpret_cast<const xcb_damage_notify_event_t&>(*event);
      carried_.push_back({notify.area.x, notify.area.y, notify.area.width, notify.area.height});
      // A flood of small changes is kept as one rectangle until the next frame.
      if (carried_.size() > 4 * maxRectsPerRead) carried_ = {boundingBox(carried_)};
    } else if (randr15_ && (type == randrFirstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                            type == randrFirstEvent_ + XCB_RANDR_NOTIFY)) {
      monitorsChanged_ = true;
    }
  }
}

void Grabber::advanceDeadline(Clock::time_point now) {
  // Absolute deadlines keep the requested rate under load; after an idle spell the next frame
  // may come one interval after this one, not at once.
  const Clock::time_point base = now - nextDeadline_ >= interval_ ? now : nextDeadline_;
  nextDeadline_ = base + interval_;
}

std::optional<CaptureError> Grabber::grab() {
  const PixelRect area = reader_->area();
  std::vector<PixelRect> reported = std::move(carried_);
  carried_.clear();
  if (dirty_) reported.push_back(area);  // no DAMAGE: read everything
  std::vector<PixelRect> changed = damageWithin(reported, area, maxRectsPerRead);
  if (changed.empty()) return std::nullopt;  // only other displays changed
  const auto now = Clock::now();
  FrameRef frame;
  std::string error;
  switch (reader_->read(changed, frame, error)) {
    case PixelReader::Result::ok:
      failedReads_ = 0;
      advanceDeadline(now);
      // The start is reported with the first picture in hand: filling fresh shared memory
      // page by page can take tens of milliseconds, which must not eat into a caller's wait
      // for the first frame.
      if (!std::exchange(announced_, true)) events_.started(std::nullopt);
      if (events_.read) events_.read(changed);
      RenderCounters::process().framesCaptured.fetch_add(1, std::memory_order_relaxed);
      events_.frame(std::move(frame));
      return std::nullopt;
    case PixelReader::Result::unchanged:  // a redraw of the same pixels: nothing to show
      failedReads_ = 0;
      advanceDeadline(now);
      RenderCounters::process().framesUnchanged.fetch_add(1, std::memory_order_relaxed);
      return std::nullopt;
    case PixelReader::Result::busy:  // readers hold every buffer: try again next interval
      carried_ = std::move(reported);
      nextDeadline_ = now + interval_;
      return std::nullopt;
    case PixelReader::Result::failed:
      break;
  }
  // A read fails when the monitor shrank or vanished under us (BadMatch outside the root).
  if (connection_->hasError()) return CaptureError{"the X connection broke"};
  if (auto gone = locate(false)) return CaptureError{*gone};
  if (++failedReads_ >= maxFailedReads) return CaptureError{error};
  carried_ = {reader_->area()};
  nextDeadline_ = now + interval_;
  return std::nullopt;
}

// Sleeps until `deadline` without reading the X connection, or a resize; false when told to
// stop.
bool Grabber::sleepUntil(Clock::time_point deadline) {
  const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(
                      std::max(Clock::duration::zero(), deadline - Clock::now()))
                      .count();
  const timespec timeout{time_t(ns / 1000000000), long(ns % 1000000000)};
  pollfd fds[2] = {{settings_.stopFd, POLLIN, 0}, {settings_.resizeFd, POLLIN, 0}};
  return wake(fds, 2, &timeout);
}

// Sleeps until the X server sends something, or a resize; false when told to stop.
bool Grabber::waitForInput() {
  pollfd fds[3] = {{settings_.stopFd, POLLIN, 0},
                   {settings_.resizeFd, POLLIN, 0},
                   {xcb_get_file_descriptor(connection_->get()), POLLIN, 0}};
  return wake(fds, 3, nullptr);
}

// Polls `fds`: the stop signal first, the resize signal second (lowered here once seen).
bool Grabber::wake(pollfd* fds, std::size_t count, const timespec* timeout) {
  xcb_flush(connection_->get());
  ppoll(fds, count, timeout, nullptr);
  if (fds[1].revents & POLLIN) {
    std::uint64_t raised;
    [[maybe_unused]] const auto taken = read(settings_.resizeFd, &raised, sizeof raised);
  }
  return (fds[0].revents & POLLIN) == 0;
}

// Applies a new picture size: everything is read again at that size.
std::optional<std::string> Grabber::resize() {
  if (!settings_.pictureSize || settings_.pictureSize->packed() == pictureSize_) {
    return std::nullopt;
  }
  return locate(true);
}

std::optional<CaptureError> Grabber::run() {
  while (true) {
    if (auto failure = resize()) return CaptureError{*failure};
    if (Clock::now() < nextDeadline_) {  // too early for another frame
      if (!sleepUntil(nextDeadline_)) return std::nullopt;
      continue;
    }
    drainEvents();
    if (connection_->hasError()) return CaptureError{"the X connection broke"};
    if (monitorsChanged_) {
      monitorsChanged_ = false;
      if (auto gone = locate(false)) return CaptureError{*gone};
    }
    if (hasWork()) {
      if (auto fatal = grab()) return fatal;
      continue;
    }
    if (!waitForInput()) return std::nullopt;
  }
}

}  // namespace

void runGrabber(const GrabberSettings& settings, const GrabberEvents& events) {
  Grabber grabber(settings, events);
  auto end = grabber.setUp();
  if (!end) end = grabber.run();
  if (!grabber.announced()) {
    // A display missing at the start, or gone before its first picture (a cable unplugged again
    // at once), ends a capture that did start: the stream reports the loss, and its display is
    // captured again once it returns. Any other failure is a failed start.
    if (end && grabber.displayMissing()) {
      events.started(std::nullopt);
    } else {
      events.started(end ? end : CaptureError{"stopped before it started"});
    }
  }
  events.ended(end);
}

}  // namespace orlet::linux_capture
