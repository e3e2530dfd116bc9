// The display's content used by several threads at once: for the thread sanitizer, and for what no order may break.

#include "await.h"
#include "displayimages.h"
#include "gatedmemory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <chrono>
#include <functional>
#include <future>
#include <thread>

using namespace krgui;

namespace {

constexpr int kRounds = 300;
constexpr int kSeenImages = 50;

bool IsUniform(const std::uint8_t* aPixels, std::size_t aBytes) {
  return aBytes < 8 || std::memcmp(aPixels, aPixels + 4, aBytes - 4) == 0;
}

/// Every frame has one grey all over, so that a mixture of two is seen.
class UniformTarget : public FrameTarget {
public:
  Outcome Draw(const Frame& aFrame, Times&) override {
    ++mDrawings;
    if (!aFrame.image)
      return Outcome::Shown;
    EXPECT_EQ(aFrame.view.imageWidth, aFrame.image->GetWidth());
    EXPECT_EQ(aFrame.view.imageHeight, aFrame.image->GetHeight());
    const std::size_t lineBytes = std::size_t{4} * aFrame.image->GetWidth();
    mPixels.resize(lineBytes * aFrame.image->GetHeight());
    for (std::uint32_t y = 0; y < aFrame.image->GetHeight(); ++y)
      aFrame.image->ConvertLine(y, mPixels.data() + lineBytes * y);
    EXPECT_TRUE(IsUniform(mPixels.data(), mPixels.size()));
    return Outcome::Shown;
  }

  void WaitForDrawings(int aCount) const {
    EXPECT_TRUE(krtest::Await([&] { return mDrawings >= aCount; }));
  }

private:
  std::atomic<int> mDrawings = 0;
  std::vector<std::uint8_t> mPixels;
};

/// An image that tells when it is asked for the first time.
class TellingImage : public ForeignImage {
public:
  explicit TellingImage(std::function<void()> aTell)
      : ForeignImage(4, 4, KrPixel::Mono8, std::vector<std::uint8_t>(16)), mTell(std::move(aTell)) {}

  std::uint32_t GetWidth() const override {
    mTell();
    return width;
  }

private:
  std::function<void()> mTell;
};

} // namespace

TEST(DisplayThreads, EverythingAtOnce_NeverMixesImages) {
  DisplayContent content;
  UniformTarget target;
  content.SetTarget(&target);
  // Above the size from which on several threads convert and copies are streamed.
  const KrBuffer images[] = {MakeImage(16, 16, KrPixel::Mono8, 1), MakeImage(64, 48, KrPixel::Mono8, 2),
                             MakeImage(64, 48, KrPixel::BGRa8, 3), MakeImage(16, 16, KrPixel::Mono8, 4),
                             MakeImage(1024, 1024, KrPixel::Mono8, 5)};
  std::atomic<int> released = 0;
  std::barrier start(7);
  {
    const auto run = [&start](const auto& aStep) {
      return std::jthread([&start, aStep] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i)
          aStep(static_cast<std::size_t>(i));
      });
    };
    const auto display = [&](std::size_t aRound) {
      auto paint = DisplayContent::Paint::NotNeeded;
      EXPECT_TRUE(content.Display(images[aRound % std::size(images)].GetImage(), paint).IsOK());
    };
    const std::jthread first = run(display);
    const std::jthread second = run([&](std::size_t aRound) { display(3 * aRound + 1); });
    const std::jthread holding = run([&](std::size_t aRound) {
      auto paint = DisplayContent::Paint::NotNeeded;
      std::shared_ptr<const KrBuffer> shared(&images[aRound % 3], [&](const KrBuffer*) { ++released; });
      EXPECT_TRUE(content.Display(std::move(shared), paint).IsOK());
    });
    const std::jthread clearing = run([&](std::size_t aRound) {
      content.SetPendingText("text");
      if (aRound % 10 == 0)
        content.Clear();
      content.GetStatistics();
    });
    const std::jthread looking = run([&](std::size_t aRound) {
      content.SetCursor(PixelPoint{static_cast<std::int32_t>(aRound % 100), 50});
      content.SetCursorLineEnabled(aRound % 2 == 0);
      content.GetCursorPixel();
    });
    // One reads the internal buffer, as each call may change it.
    const std::jthread reading = run([&](std::size_t) { content.GetInternalBuffer(); });
    start.arrive_and_wait();
    for (int i = 0; i < kRounds; ++i)
      content.PaintWindow(100 + i % 3, 100, 18);
  }

  content.PaintWindow(100, 100, 18);
  const KrBuffer& internal = content.GetInternalBuffer();
  EXPECT_TRUE(IsUniform(internal.GetDataPointer(), internal.GetSize()));
  const KrDisplayStatistics statistics = content.GetStatistics();
  EXPECT_EQ(statistics.received, 3u * kRounds);
  EXPECT_EQ(statistics.refused, 0u);
  EXPECT_EQ(statistics.shown + statistics.dropped, statistics.received);
  content.Clear();
  EXPECT_EQ(released, kRounds);
}

TEST(DisplayThreads, InternalBufferRead_IsOneImageWhileOthersAreDisplayed) {
  DisplayContent content;
  const KrBuffer images[] = {MakeImage(600, 600, KrPixel::Mono8, 1), MakeImage(600, 600, KrPixel::Mono8, 2)};
  std::atomic<bool> isDone = false;
  std::jthread camera([&] {
    for (std::size_t i = 0; !isDone; ++i) {
      auto paint = DisplayContent::Paint::NotNeeded;
      EXPECT_TRUE(content.Display(images[i % 2].GetImage(), paint).IsOK());
    }
  });

  int changes = 0;
  for (std::uint8_t last = 0; changes < kSeenImages;) {
    const KrBuffer& internal = content.GetInternalBuffer();
    EXPECT_TRUE(IsUniform(internal.GetDataPointer(), internal.GetSize()));
    const std::uint8_t grey = internal.GetSize() == 0 ? last : internal.GetDataPointer()[0];
    changes += grey != last ? 1 : 0;
    last = grey;
  }
  isDone = true;
}

TEST(DisplayThreads, TargetTaken_IsNotInUseAnyMore) {
  DisplayContent content;
  const KrBuffer image = MakeImage(16, 16, KrPixel::Mono8, 1);
  // The view is that of this image, so that others of its size are drawn at once.
  auto firstPaint = DisplayContent::Paint::NotNeeded;
  ASSERT_TRUE(content.Display(image.GetImage(), firstPaint).IsOK());
  content.PaintWindow(100, 100, 18);
  std::atomic<bool> isDone = false;
  std::jthread camera([&] {
    auto paint = DisplayContent::Paint::NotNeeded;
    while (!isDone)
      EXPECT_TRUE(content.Display(image.GetImage(), paint).IsOK());
  });

  for (int i = 0; i < kRounds; ++i) {
    UniformTarget target;
    content.SetTarget(&target);
    content.PaintWindow(100, 100, 18);
    // One drawing is the paint, the next one the camera's.
    target.WaitForDrawings(2);
    content.SetTarget(nullptr);
  }
  isDone = true;
}

TEST(DisplayThreads, CallThatWaitsForItsTurn_HasBegunBeforeTheWait) {
  using Clock = std::chrono::steady_clock;
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  display.Paint();
  std::atomic<bool> isDrawing = false;
  std::atomic<bool> hasBegun = false;
  Clock::time_point firstEnd;
  // The first drawing lasts until the second call is under way.
  display.target.onDraw = [&] {
    if (isDrawing.exchange(true))
      return;
    EXPECT_TRUE(krtest::Await([&] { return hasBegun.load(); }));
    firstEnd = Clock::now();
  };
  std::jthread second([&] {
    const TellingImage image([&] { hasBegun = true; });
    EXPECT_TRUE(krtest::Await([&] { return isDrawing.load(); }));
    display.Show(&image);
  });

  display.Show(MakeImage(4, 4, KrPixel::Mono8, 2));
  second.join();

  EXPECT_LT(display.target.GetLast().callBegin, firstEnd);
}

TEST(DisplayThreads, ClearDuringAConversion_DoesNotWaitAndDropsItsResult) {
  constexpr std::uint32_t kSide = 64;
  OpenDisplay display;
  GatedMemory memory(kSide * kSide);
  KrBuffer image;
  ASSERT_TRUE(image.Attach(memory.Get(), memory.GetSize()).IsOK());
  ASSERT_TRUE(image.DescribeImage(kSide, kSide, KrPixel::Mono8).IsOK());
  auto paint = DisplayContent::Paint::NotNeeded;
  std::atomic<bool> isReleased = false;
  const std::shared_ptr<const KrBuffer> held(&image, [&](const KrBuffer*) { isReleased = true; });
  ASSERT_TRUE(display.content.Display(std::shared_ptr<const KrBuffer>(held), paint).IsOK());
  memory.Close();
  auto conversion = std::async(std::launch::async, [&] { return display.content.GetInternalBuffer().GetSize(); });
  memory.AwaitReader();

  auto clearing = std::async(std::launch::async, [&] { display.content.Clear(); });
  const bool isCleared = clearing.wait_for(krtest::GetGenerousLimit()) == std::future_status::ready;
  const bool isPaintedEmpty = isCleared && !display.Look().hasImage;
  memory.Open();

  EXPECT_TRUE(isCleared);
  EXPECT_TRUE(isPaintedEmpty);
  EXPECT_EQ(conversion.get(), 0u);
  EXPECT_EQ(display.content.GetInternalBuffer().GetSize(), 0u);
}

TEST(DisplayThreads, ImageAfterAClearDuringAConversion_IsWhatTheInternalBufferHasNext) {
  constexpr std::uint32_t kSide = 64;
  OpenDisplay display;
  GatedMemory memory(kSide * kSide);
  KrBuffer image;
  ASSERT_TRUE(image.Attach(memory.Get(), memory.GetSize()).IsOK());
  ASSERT_TRUE(image.DescribeImage(kSide, kSide, KrPixel::Mono8).IsOK());
  auto paint = DisplayContent::Paint::NotNeeded;
  ASSERT_TRUE(display.content.Display(std::shared_ptr<const KrBuffer>(&image, [](const KrBuffer*) {}), paint).IsOK());
  memory.Close();
  auto conversion = std::async(std::launch::async, [&] { return display.content.GetInternalBuffer().GetSize(); });
  memory.AwaitReader();
  auto clearing = std::async(std::launch::async, [&] { display.content.Clear(); });
  const bool isCleared = clearing.wait_for(krtest::GetGenerousLimit()) == std::future_status::ready;

  display.Show(MakeImage(4, 4, KrPixel::Mono8, 9));
  memory.Open();

  EXPECT_TRUE(isCleared);
  EXPECT_EQ(conversion.get(), 0u);
  const KrBuffer& internal = display.content.GetInternalBuffer();
  EXPECT_EQ(std::vector<std::uint8_t>(internal.GetDataPointer(), internal.GetDataPointer() + internal.GetSize()),
            MakeGreyPixels(4, 4, 9));
}
