#include "capture/FramePool.h"

#include <gtest/gtest.h>

#include <random>

namespace orlet {
namespace {

constexpr int W = 37;
constexpr int H = 23;

// The picture the pool's frames must equal: every pixel's last written value.
struct Reference {
  std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(W * H, 0);
};

void paint(Frame& frame, Reference& reference, const PixelRect& rect, std::uint32_t value) {
  for (int y = rect.y; y < rect.maxY(); ++y) {
    for (int x = rect.x; x < rect.maxX(); ++x) {
      std::memcpy(frame.mutableRow(y) + x * 4, &value, 4);
      reference.pixels[y * W + x] = value;
    }
  }
}

bool equals(const Frame& frame, const Reference& reference) {
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) {
      // The fourth byte is padding.
      if ((frame.pixel(x, y) ^ reference.pixels[y * W + x]) & 0xFFFFFF) return false;
    }
  }
  return true;
}

FramePool makePool(std::size_t capacity, int* allocations = nullptr) {
  return FramePool(W, H, capacity, [allocations](int w, int h) {
    if (allocations) ++*allocations;
    return Frame::allocate(w, h);
  });
}

TEST(FramePoolTest, UpdatesAnUnheldPictureInPlaceAndNeverWritesAHeldOne) {
  int allocations = 0;
  FramePool pool = makePool(3, &allocations);
  Reference reference;
  const PixelRect all{0, 0, W, H};

  auto first = pool.acquire({all});
  paint(*first, reference, all, 0x111111);
  pool.commit(first, {all});
  first.reset();

  // Nobody holds the picture: the next one reuses its buffer.
  const Frame* firstBuffer = pool.current().get();
  auto second = pool.acquire({{2, 3, 4, 5}});
  EXPECT_EQ(second.get(), firstBuffer);
  paint(*second, reference, {2, 3, 4, 5}, 0x222222);
  pool.commit(second, {{2, 3, 4, 5}});
  second.reset();

  // A reader holds it now: the next picture goes elsewhere and the held one stays intact.
  std::shared_ptr<const Frame> held = pool.current();
  const Reference heldReference = reference;
  auto third = pool.acquire({{10, 10, 3, 3}});
  EXPECT_NE(third.get(), held.get());
  paint(*third, reference, {10, 10, 3, 3}, 0x333333);
  pool.commit(third, {{10, 10, 3, 3}});
  third.reset();

  EXPECT_TRUE(equals(*held, heldReference));
  EXPECT_TRUE(equals(*pool.current(), reference));
  EXPECT_EQ(allocations, 2);
}

TEST(FramePoolTest, EveryPictureIsCompleteWhateverReadersHoldAndHowLong) {
  std::mt19937 random(7);
  FramePool pool = makePool(4);
  Reference reference;
  std::vector<std::pair<std::shared_ptr<const Frame>, Reference>> readers;

  auto first = pool.acquire({});
  paint(*first, reference, {0, 0, W, H}, 1);
  pool.commit(first, {{0, 0, W, H}});

  for (std::uint32_t step = 2; step < 400; ++step) {
    std::vector<PixelRect> changed;
    for (int n = random() % 3; n >= 0; --n) {
      const int x = random() % W, y = random() % H;
      changed.push_back({x, y, 1 + int(random() % (W - x)), 1 + int(random() % (H - y))});
    }
    auto frame = pool.acquire(changed);
    if (!frame) {  // every buffer held: a reader lets go, the change waits
      readers.erase(readers.begin());
      continue;
    }
    for (const auto& rect : changed) paint(*frame, reference, rect, step);
    pool.commit(frame, changed);
    frame.reset();
    ASSERT_TRUE(equals(*pool.current(), reference)) << "step " << step;
    if (random() % 2) readers.emplace_back(pool.current(), reference);
    if (!readers.empty() && random() % 3 == 0) readers.erase(readers.begin());
    for (const auto& [held, expected] : readers) ASSERT_TRUE(equals(*held, expected));
  }
}

TEST(FramePoolTest, AFullPoolOfHeldPicturesGivesNoBufferAndADiscardedOneIsRebuilt) {
  FramePool pool = makePool(2);
  Reference reference;
  const PixelRect all{0, 0, W, H};
  auto a = pool.acquire({all});
  paint(*a, reference, all, 5);
  pool.commit(a, {all});
  auto b = pool.acquire({{0, 0, 1, 1}});
  paint(*b, reference, {0, 0, 1, 1}, 6);
  pool.commit(b, {{0, 0, 1, 1}});
  EXPECT_EQ(pool.acquire({{0, 0, 1, 1}}), nullptr);

  // A buffer taken for a change that could not be read must not pass for an up-to-date one.
  a.reset();
  auto spoiled = pool.acquire({{0, 0, 1, 1}});
  ASSERT_NE(spoiled, nullptr);
  std::memset(spoiled->mutablePixels(), 0xAB, spoiled->byteCount());
  pool.discard(spoiled);
  spoiled.reset();
  auto next = pool.acquire({{1, 1, 1, 1}});
  paint(*next, reference, {1, 1, 1, 1}, 7);
  pool.commit(next, {{1, 1, 1, 1}});
  next.reset();
  EXPECT_TRUE(equals(*pool.current(), reference));

  // Spoiling the current picture itself, updated in place, leaves no picture to build on.
  b.reset();
  auto inPlace = pool.acquire({{0, 0, 1, 1}});
  pool.discard(inPlace);
  EXPECT_EQ(pool.current(), nullptr);
}

TEST(FramePoolTest, ARedrawOfTheSamePixelsIsNoNewPictureAndLeavesTheBufferUsable) {
  FramePool pool = makePool(3);
  Reference reference;
  const PixelRect all{0, 0, W, H};
  auto first = pool.acquire({all});
  paint(*first, reference, all, 0x101010);
  ASSERT_TRUE(pool.commit(first, {all}));
  first.reset();

  struct Case {
    const char* what;
    std::uint32_t value;
    bool isNew;
  };
  const PixelRect box{5, 6, 7, 8};
  std::uint32_t corner = 0x20;
  for (const Case& c : {Case{"same colour", 0x101010, false},
                        Case{"same colour, other padding byte", 0xFF101010, false},
                        Case{"one channel one step off", 0x101011, true}}) {
    const std::shared_ptr<const Frame> shown = pool.current();  // held, as a view holds it
    const std::uint64_t version = pool.version();
    auto frame = pool.acquire({box});
    Reference expected = reference;
    paint(*frame, expected, box, c.value);
    EXPECT_EQ(pool.commit(frame, {box}), c.isNew) << c.what;
    EXPECT_EQ(pool.version(), version + (c.isNew ? 1 : 0)) << c.what;
    EXPECT_EQ(pool.current() == shown, !c.isNew) << c.what;
    frame.reset();
    // Whatever was committed, the next picture built on it is complete.
    auto next = pool.acquire({{0, 0, 1, 1}});
    paint(*next, expected, {0, 0, 1, 1}, ++corner);
    EXPECT_TRUE(pool.commit(next, {{0, 0, 1, 1}}));
    next.reset();
    EXPECT_TRUE(equals(*pool.current(), expected)) << c.what;
    reference = expected;
  }
}

TEST(PixelRectTest, DamageIsClippedToTheDisplayAndMadeRelativeToIt) {
  const PixelRect display{1920, 0, 2560, 1440};
  const std::vector<PixelRect> damage = {
      {0, 0, 100, 100},        // another display
      {1900, 10, 40, 20},      // straddles the left edge
      {4400, 1400, 200, 200},  // straddles the bottom-right corner
      {2000, 500, 10, 10}};
  EXPECT_EQ(damageWithin(damage, display, 8),
            (std::vector<PixelRect>{{0, 10, 20, 20}, {2480, 1400, 80, 40}, {80, 500, 10, 10}}));
  EXPECT_EQ(damageWithin(damage, display, 2), (std::vector<PixelRect>{{0, 10, 2560, 1430}}));
  EXPECT_TRUE(damageWithin({{0, 0, 1920, 1080}}, display, 8).empty());
}

TEST(PixelRectTest, RepaintsOfTheSameSpotAreReadOnceAndDistantChangesApart) {
  // A box moved by 8 pixels: background over the old place, then the box at the new one.
  std::vector<PixelRect> rects = {
      {100, 100, 200, 200}, {108, 100, 200, 200}, {0, 0, 16, 16}, {4, 4, 8, 8}, {1000, 10, 5, 5}};
  mergeOverlapping(rects);
  EXPECT_EQ(rects,
            (std::vector<PixelRect>{{100, 100, 208, 200}, {0, 0, 16, 16}, {1000, 10, 5, 5}}));
}

}  // namespace
}  // namespace orlet
