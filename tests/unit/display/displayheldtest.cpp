// Buffers that the application leaves to the display instead of having them copied.

#include "displayimages.h"
#include "krbase/krlogger.h"

#include <gtest/gtest.h>

using namespace krgui;

namespace {

using Paint = DisplayContent::Paint;

struct SharedBuffer {
  explicit SharedBuffer(DisplayContent& aContent, std::uint8_t aValue = 7, std::uint32_t aWidth = 4)
      : image(MakeImage(aWidth, 4, KrPixel::Mono8, aValue)),
        // Would wait for ever if the display gave it back under its lock.
        shared(&image, [this, &aContent](const KrBuffer*) {
          aContent.GetPendingText();
          aContent.GetInternalBuffer();
          isReleased = true;
        }) {}

  KrBuffer image;
  bool isReleased = false;
  std::shared_ptr<const KrBuffer> shared;
};

Paint ShowHeld(DisplayContent& aContent, SharedBuffer& aBuffer) {
  auto paint = Paint::NotNeeded;
  EXPECT_TRUE(aContent.Display(std::move(aBuffer.shared), paint).IsOK());
  return paint;
}

} // namespace

TEST(DisplayHeldBuffer, Shown_IsTheBufferItselfAndNotACopy) {
  OpenDisplay display;
  SharedBuffer buffer(display.content);

  ShowHeld(display.content, buffer);

  EXPECT_FALSE(buffer.isReleased);
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 7));
  std::memset(buffer.image.GetDataPointer(), 8, buffer.image.GetSize());
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 8));
  display.content.Clear();
}

TEST(DisplayHeldBuffer, SecondOfTheSameSize_IsDrawnAtOnceAndReleasesTheFirst) {
  OpenDisplay display;
  SharedBuffer first(display.content);
  SharedBuffer second(display.content, 9);
  ShowHeld(display.content, first);
  display.Paint();

  EXPECT_EQ(ShowHeld(display.content, second), Paint::NotNeeded);

  EXPECT_TRUE(first.isReleased);
  EXPECT_FALSE(second.isReleased);
  EXPECT_EQ(display.target.GetLast().pixels, MakeGreyPixels(4, 4, 9));
  display.content.Clear();
  EXPECT_TRUE(second.isReleased);
}

TEST(DisplayHeldBuffer, CopiedImageNext_ReleasesItWithoutTheLock) {
  OpenDisplay display;
  SharedBuffer buffer(display.content);
  ShowHeld(display.content, buffer);

  display.Show(MakeImage(4, 4, KrPixel::Mono8, 2));

  EXPECT_TRUE(buffer.isReleased);
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 2));
}

TEST(DisplayHeldBuffer, TruncatedImageOfAnotherSizeNext_ReleasesItWithoutTheLock) {
  OpenDisplay display;
  SharedBuffer buffer(display.content);
  ShowHeld(display.content, buffer);
  const StatedImage truncated(64, 64, 16);

  display.Show(&truncated);

  EXPECT_TRUE(buffer.isReleased);
}

TEST(DisplayHeldBuffer, Refused_IsReleasedAndChangesNothing) {
  OpenDisplay display;
  SharedBuffer shown(display.content);
  ShowHeld(display.content, shown);
  SharedBuffer refused(display.content);
  ASSERT_TRUE(refused.image.GetImage()->Alloc(4, 4, KrPixel::BiColorRGBG8).IsOK());
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;

  EXPECT_EQ(display.content.Display(std::move(refused.shared), paint).GetCodeNumber(), 16384u);

  EXPECT_TRUE(refused.isReleased);
  EXPECT_FALSE(shown.isReleased);
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 7));
  display.content.Clear();
}

TEST(DisplayHeldBuffer, InternalBuffer_IsConvertedFromIt) {
  OpenDisplay display;
  SharedBuffer buffer(display.content);
  ShowHeld(display.content, buffer);

  const KrBuffer& internal = display.content.GetInternalBuffer();

  EXPECT_EQ(std::vector<std::uint8_t>(internal.GetDataPointer(), internal.GetDataPointer() + internal.GetSize()),
            MakeGreyPixels(4, 4, 7));
  display.content.Clear();
}

TEST(DisplayHeldBuffer, EndOfTheContent_ReleasesIt) {
  bool isReleased = false;
  {
    DisplayContent content;
    auto paint = Paint::NotNeeded;
    const KrBuffer image = MakeImage(4, 4, KrPixel::Mono8, 1);
    std::shared_ptr<const KrBuffer> shared(&image, [&](const KrBuffer*) { isReleased = true; });
    EXPECT_TRUE(content.Display(std::move(shared), paint).IsOK());
    EXPECT_FALSE(isReleased);
    content.Clear();
  }
  EXPECT_TRUE(isReleased);
}
