#include "linux/capture/PixelReader.h"

#include <algorithm>
#include <cstring>

#include "linux/capture/BatchReader.h"
#include "linux/capture/SharedMemoryPool.h"
#include "linux/capture/TenBitPixels.h"

namespace orlet::linux_capture {
namespace {

// Buffers per display: one being shown, one travelling to the main thread, one being filled.
constexpr std::size_t poolCapacity = 3;

std::int64_t totalArea(const std::vector<PixelRect>& rects) {
  std::int64_t area = 0;
  for (const auto& r : rects) area += r.area();
  return area;
}

}  // namespace

PixelReader::PixelReader(const XcbConnection& connection, bool useSharedMemory,
                         std::shared_ptr<SharedMemoryPool> memory)
    : connection_(connection),
      useShm_(useSharedMemory),
      memoryPool_(std::move(memory)),
      tenBitChannels_(connection.screen().root_depth == 30) {}

PixelReader::~PixelReader() = default;

bool PixelReader::configure(const PixelRect& area, int width, int height, std::string& error) {
  area_ = area;
  reducing_.reset();
  pool_.reset();
  frameMemory_.clear();
  scratch_.reset();
  const bool reduced = width > 0 && height > 0 && width <= area.width && height <= area.height &&
                       (width < area.width || height < area.height);
  const std::size_t areaBytes = std::size_t(area.area()) * Frame::bytesPerPixel;
  if (useShm_) {
    scratch_ =
        sharedMemory(reduced ? std::min(areaBytes, ReducingReader::readBudget) : areaBytes, error);
    if (!scratch_) return false;
  }
  if (reduced) {
    reducing_ = std::make_unique<ReducingReader>(connection_, scratch_.get(), area, width, height,
                                                 tenBitChannels_);
    return true;
  }
  pool_ = std::make_unique<FramePool>(area.width, area.height, poolCapacity,
                                      [this](int w, int h) { return allocate(w, h); });
  return true;
}

std::shared_ptr<Frame> PixelReader::allocate(int width, int height) {
  if (useShm_) {
    // Frames in shared memory let the server write a large change straight into them.
    std::string ignored;
    const std::size_t stride = std::size_t(width) * Frame::bytesPerPixel;
    if (auto memory = sharedMemory(stride * height, ignored)) {
      auto frame =
          std::make_shared<Frame>(width, height, stride, memory->mapping(), memory->data());
      frameMemory_[memory->data()] = std::move(memory);
      return frame;
    }
  }
  return Frame::allocate(width, height);
}

std::unique_ptr<SharedMemory> PixelReader::sharedMemory(std::size_t size, std::string& error) {
  if (memoryPool_) {
    if (auto memory = memoryPool_->take(size, error)) return memory;
  }
  return SharedMemory::create(connection_, size, error);
}

PixelReader::Result PixelReader::read(std::vector<PixelRect> changed, FrameRef& frame,
                                      std::string& error) {
  if (reducing_) return reducing_->read(std::move(changed), frame, error);
  if (!pool_->current()) changed = {{0, 0, area_.width, area_.height}};
  std::shared_ptr<Frame> target = pool_->acquire(changed);
  if (!target) return Result::busy;
  const bool ok = useShm_ ? readShm(*target, changed, error) : readRects(*target, changed, error);
  if (!ok) {
    pool_->discard(target);
    return Result::failed;
  }
  if (!pool_->commit(target, changed)) return Result::unchanged;
  target->setChanges(pool_->version(), std::move(changed));
  frame = std::move(target);
  return Result::ok;
}

bool PixelReader::readShm(Frame& frame, const std::vector<PixelRect>& changed, std::string& error) {
  const PixelRect bounds = boundingBox(changed);
  const PixelRect band{0, bounds.y, area_.width, bounds.height};
  // A large change is read as whole rows straight into the frame (no copy on our side); a
  // small one rectangle by rectangle into scratch memory, then copied: fewer bytes overall.
  // Ten-bit pixels are converted as they are copied: never read straight into the frame.
  if (!tenBitChannels_ && frameMemory_.count(frame.pixels()) &&
      band.area() <= 2 * totalArea(changed)) {
    return readBand(frame, band, error);
  }
  return readRects(frame, changed, error);
}

bool PixelReader::readRects(Frame& frame, const std::vector<PixelRect>& changed,
                            std::string& error) {
  return readBatch(
      connection_, useShm_ ? scratch_.get() : nullptr, area_, changed,
      [this, &frame](const PixelRect& r, const std::uint8_t* pixels) { copyIn(frame, r, pixels); },
      error);
}

bool PixelReader::readBand(Frame& frame, const PixelRect& band, std::string& error) {
  const auto& memory = frameMemory_.at(frame.pixels());
  xcb_generic_error_t* rawError = nullptr;
  Reply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(
      connection_.get(),
      xcb_shm_get_image(connection_.get(), connection_.root(), std::int16_t(area_.x),
                        std::int16_t(area_.y + band.y), std::uint16_t(band.width),
                        std::uint16_t(band.height), ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP,
                        memory->segment(), std::uint32_t(band.y * frame.stride())),
      &rawError));
  Reply<xcb_generic_error_t> failure(rawError);
  if (!reply) {
    error = failure ? describe("MIT-SHM GetImage", *failure) : "MIT-SHM GetImage failed";
    return false;
  }
  return true;
}

void PixelReader::copyIn(Frame& frame, const PixelRect& rect, const std::uint8_t* source) const {
  const std::size_t bytes = std::size_t(rect.width) * Frame::bytesPerPixel;
  const std::size_t offset = std::size_t(rect.x) * Frame::bytesPerPixel;
  if (tenBitChannels_) {
    for (int y = 0; y < rect.height; ++y) {
      narrowTenBitRow(source + bytes * std::size_t(y), frame.mutableRow(rect.y + y) + offset,
                      rect.width);
    }
    return;
  }
  for (int y = 0; y < rect.height; ++y) {
    std::memcpy(frame.mutableRow(rect.y + y) + offset, source + bytes * std::size_t(y), bytes);
  }
}

}  // namespace orlet::linux_capture
