// Random uses of a display's content, each compared with what a plain account of the rules says should come of it.

#include "displayimages.h"
#include "krbase/krlogger.h"

#include <gtest/gtest.h>

#include <random>

using namespace krgui;

namespace {

using Outcome = FrameTarget::Outcome;
using Paint = DisplayContent::Paint;

struct Size {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct HeldGrey {
  Size size;
  std::vector<std::uint8_t> pixels;
};

/// The rules, without memory, locks or conversion.
class DisplayModel {
public:
  Paint Display(Size aSize, const std::optional<std::vector<std::uint8_t>>& aPixels) {
    const bool isResized = aSize != mLastSize;
    mLastSize = aSize;
    displayedText = pendingText;
    refusalText = KrString();
    ++received;
    if (aPixels) {
      DropWaiting();
      held = HeldGrey{aSize, *aPixels};
      mIsWaiting = true;
    } else {
      ++dropped;
      if (!held || held->size != aSize) {
        DropWaiting();
        held = HeldGrey{aSize, std::vector<std::uint8_t>(std::size_t{4} * aSize.width * aSize.height, 0)};
      }
    }
    if (isResized || viewSize != aSize)
      return Paint::Needed;
    return Draw() ? Paint::NotNeeded : Paint::Needed;
  }

  Paint Refuse(const KrString& aScreenText) {
    ++received;
    ++refused;
    refusalText = aScreenText;
    return held ? Paint::NotNeeded : Paint::Needed;
  }

  void Clear() {
    pendingText = displayedText = refusalText = KrString();
    if (held)
      mLastSize.width = 0;
    held.reset();
    DropWaiting();
  }

  void PaintWindow() {
    viewSize = mLastSize;
    Draw();
  }

  std::optional<HeldGrey> held;
  Size viewSize;
  KrString pendingText, displayedText, refusalText;
  Outcome outcome = Outcome::Shown;
  std::uint64_t received = 0, shown = 0, dropped = 0, refused = 0;
  std::size_t drawings = 0;

private:
  void DropWaiting() {
    dropped += mIsWaiting ? 1 : 0;
    mIsWaiting = false;
  }

  bool Draw() {
    ++drawings;
    if (outcome != Outcome::Shown)
      return false;
    shown += mIsWaiting ? 1 : 0;
    mIsWaiting = false;
    return true;
  }

  Size mLastSize;
  bool mIsWaiting = false;
};

/// A display and its model, used in the same way.
class DisplayUser {
public:
  explicit DisplayUser(std::uint32_t aSeed) : mRandom(aSeed) {}

  void Step() {
    switch (Pick(12)) {
    case 0:
      Clear();
      break;
    case 1:
      mModel.pendingText = KrString(std::to_string(Pick(1000)));
      mDisplay.content.SetPendingText(mModel.pendingText);
      break;
    case 2:
      mModel.outcome = mDisplay.target.outcome = static_cast<Outcome>(Pick(3));
      break;
    case 3:
      Refuse();
      break;
    case 4:
      DisplayTruncated();
      break;
    case 5:
    case 6:
      mDisplay.Paint();
      mModel.PaintWindow();
      break;
    default:
      DisplayWhole();
    }
    Compare();
  }

private:
  std::uint32_t Pick(std::uint32_t aCount) {
    return std::uniform_int_distribution<std::uint32_t>(0, aCount - 1)(mRandom);
  }
  Size PickSize() { return {3 + Pick(2), 5 + Pick(2)}; }

  void Clear() {
    mDisplay.content.Clear();
    mModel.Clear();
  }

  void Refuse() {
    auto paint = Paint::NotNeeded;
    const StatedImage image(0, 4, 16);
    const KrLogCapture log;
    const KrResult result = mDisplay.content.Display(&image, paint);
    EXPECT_EQ(result.GetCodeNumber(), 1281u);
    EXPECT_EQ(paint, mModel.Refuse(result.GetDescription()));
  }

  void DisplayTruncated() {
    const Size size = PickSize();
    // Sixteen bytes are fewer than any of these sizes takes in this format.
    const StatedImage image(size.width, size.height, 16, KrPixel::BGRa8);
    const Paint paint = mDisplay.Show(&image);
    EXPECT_EQ(paint, mModel.Display(size, std::nullopt));
  }

  void DisplayWhole() {
    const Size size = PickSize();
    const auto grey = static_cast<std::uint8_t>(Pick(256));
    auto buffer = std::make_shared<const KrBuffer>(MakeImage(size.width, size.height, KrPixel::Mono8, grey));
    auto paint = Paint::NotNeeded;
    EXPECT_TRUE(
        (Pick(2) == 0 ? mDisplay.content.Display(buffer->GetImage(), paint) : mDisplay.content.Display(buffer, paint))
            .IsOK());
    EXPECT_EQ(paint, mModel.Display(size, MakeGreyPixels(size.width, size.height, grey)));
  }

  void Compare() {
    const KrDisplayStatistics statistics = mDisplay.content.GetStatistics();
    EXPECT_EQ(statistics.received, mModel.received);
    EXPECT_EQ(statistics.shown, mModel.shown);
    EXPECT_EQ(statistics.dropped, mModel.dropped);
    EXPECT_EQ(statistics.refused, mModel.refused);
    EXPECT_EQ(mDisplay.content.GetPendingText(), mModel.pendingText);
    ASSERT_EQ(mDisplay.target.drawings.size(), mModel.drawings);
    RecordingTarget picture;
    mDisplay.content.PaintTo(picture);
    const RecordingTarget::Drawing& drawing = picture.GetLast();
    const bool isDrawable = mModel.held && mModel.held->size == mModel.viewSize;
    EXPECT_EQ(drawing.hasImage, isDrawable);
    EXPECT_EQ(drawing.pixels, isDrawable ? mModel.held->pixels : std::vector<std::uint8_t>());
    EXPECT_EQ(drawing.overlayText, isDrawable ? mModel.displayedText : KrString());
    EXPECT_EQ(drawing.refusalText, mModel.held ? KrString() : mModel.refusalText);
    const KrBuffer& internal = mDisplay.content.GetInternalBuffer();
    EXPECT_EQ(std::vector<std::uint8_t>(internal.GetDataPointer(), internal.GetDataPointer() + internal.GetSize()),
              mModel.held ? mModel.held->pixels : std::vector<std::uint8_t>());
  }

  std::mt19937 mRandom;
  OpenDisplay mDisplay;
  DisplayModel mModel;
};

} // namespace

TEST(DisplayModel, RandomUses_GiveWhatTheRulesSay) {
  for (std::uint32_t seed = 1; seed <= 20 && !testing::Test::HasFailure(); ++seed) {
    DisplayUser user(seed);
    for (int step = 0; step < 300 && !testing::Test::HasFailure(); ++step) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", step " << step);
      user.Step();
    }
  }
}
