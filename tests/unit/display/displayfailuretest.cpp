// What a display does with images that it refuses or cannot convert, and when memory is short.

#include "displayimages.h"
#include "krbase/krlogger.h"
#include "memorylimit.h"

#include <gmock/gmock.h>

#include <new>
#include <stdexcept>

using namespace krgui;

namespace {

using Paint = DisplayContent::Paint;

/// An image whose class throws when it is asked for its padding.
template <typename Exception>
struct ThrowingImage : StatedImage {
  explicit ThrowingImage(const Exception& aException) : StatedImage(4, 4, 16), exception(aException) {}
  std::uint32_t GetPaddingX() const override { throw Exception(exception); }
  Exception exception;
};

/// Counts how often each of its values is asked for.
struct CountingImage : StatedImage {
  using StatedImage::GetDataPointer;
  using StatedImage::StatedImage;
  std::uint32_t GetWidth() const override { return ++widths, StatedImage::GetWidth(); }
  std::uint32_t GetHeight() const override { return ++heights, StatedImage::GetHeight(); }
  KrPixelType GetPixelType() const override { return ++types, StatedImage::GetPixelType(); }
  std::size_t GetImageSize() const override { return ++sizes, StatedImage::GetImageSize(); }
  const std::uint8_t* GetDataPointer() const override { return ++pointers, StatedImage::GetDataPointer(); }
  mutable int widths = 0, heights = 0, types = 0, sizes = 0, pointers = 0;
};

} // namespace

TEST(DisplayFailure, TruncatedImageOfANewSize_SucceedsAndIsShownBlack) {
  OpenDisplay display;
  display.Show(MakeImage(2, 2, KrPixel::Mono8, 7));
  display.content.SetPendingText("text");
  // It says 64 x 32 pixels, and that it has sixteen bytes.
  const StatedImage truncated(64, 32, 16);

  EXPECT_EQ(display.Show(&truncated), Paint::Needed);

  const RecordingTarget::Drawing& drawing = display.Look();
  EXPECT_EQ(drawing.width, 64u);
  EXPECT_EQ(drawing.height, 32u);
  EXPECT_EQ(drawing.pixels, std::vector<std::uint8_t>(64 * 32 * 4, 0));
  EXPECT_EQ(drawing.overlayText, KrString("text"));
  EXPECT_EQ(display.content.GetInternalBuffer().GetImage()->GetWidth(), 64u);
}

TEST(DisplayFailure, TruncatedImageOfTheSameSize_LeavesTheFormerOneWithTheNewText) {
  OpenDisplay display;
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  display.Paint();
  display.content.SetPendingText("text");
  const StatedImage truncated(8, 8, 16);

  EXPECT_EQ(display.Show(&truncated), Paint::NotNeeded);

  EXPECT_EQ(display.target.drawings.size(), 2u);
  EXPECT_EQ(display.target.GetLast().pixels, MakeGreyPixels(8, 8, 7));
  EXPECT_EQ(display.target.GetLast().overlayText, KrString("text"));
}

TEST(DisplayFailure, TruncatedImages_AreToldOfOnceUntilOneIsShown) {
  OpenDisplay display;
  const StatedImage truncated(64, 32, 16);
  const KrLogCapture log;

  display.Show(&truncated);
  display.Show(&truncated);
  const std::size_t inARow = log.GetRecords().size();
  display.Show(MakeImage(2, 2, KrPixel::Mono8, 7));
  display.Show(&truncated);

  ASSERT_EQ(inARow, 1u);
  EXPECT_EQ(log.GetRecords().front().level, KrLogLevel::Warning);
  EXPECT_NE(log.GetRecords().front().text.ToUtf8().find("only 16 bytes of it are there"), std::string::npos);
  EXPECT_EQ(log.GetRecords().size(), 2u);
}

TEST(DisplayFailure, TruncatedImage_CountsAsDroppedAndLeavesTheFormerOneWaiting) {
  OpenDisplay display;
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  const StatedImage truncated(8, 8, 16);

  display.Show(&truncated);
  display.Paint();

  const KrDisplayStatistics statistics = display.content.GetStatistics();
  EXPECT_EQ(statistics.received, 2u);
  EXPECT_EQ(statistics.shown, 1u);
  EXPECT_EQ(statistics.dropped, 1u);
}

TEST(DisplayFailure, TruncatedImageOfANewSize_DropsTheFormerOneThatWaited) {
  OpenDisplay display;
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  const StatedImage truncated(9, 8, 16);

  display.Show(&truncated);
  display.Paint();

  const KrDisplayStatistics statistics = display.content.GetStatistics();
  EXPECT_EQ(statistics.received, 2u);
  EXPECT_EQ(statistics.shown, 0u);
  EXPECT_EQ(statistics.dropped, 2u);
}

TEST(DisplayFailure, NoMemoryForTheCopy_SucceedsAndTheFormerImageStaysInOrder) {
  constexpr std::uint32_t kSide = 8192;
  const KrBuffer large = MakeImage(kSide, kSide, KrPixel::Mono8, 9);
  OpenDisplay display;
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  display.Paint();

  {
    const MemoryLimit limit(std::size_t{16} << 20);
    EXPECT_EQ(display.Show(large), Paint::Needed);
    display.Paint();
  }

  // There was no memory for a black image either.
  EXPECT_FALSE(display.target.GetLast().hasImage);
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 6));
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(8, 8, 6));
}

TEST(DisplayFailure, NoMemoryForTheInternalBuffer_LeavesItEmptyAndTheNextCallTriesAgain) {
  constexpr std::uint32_t kSide = 4096;
  DisplayContent content;
  const KrBuffer large = MakeImage(kSide, kSide, KrPixel::Mono8, 9);
  auto paint = Paint::NotNeeded;
  ASSERT_TRUE(content.Display(large.GetImage(), paint).IsOK());

  {
    const MemoryLimit limit(std::size_t{16} << 20);
    EXPECT_EQ(content.GetInternalBuffer().GetSize(), 0u);
  }

  EXPECT_EQ(content.GetInternalBuffer().GetSize(), std::size_t{kSide} * kSide * 4);
  EXPECT_EQ(content.GetInternalBuffer().GetDataPointer()[0], 9);
}

TEST(DisplayFailure, ClassThatThrows_FailsIsCountedAndChangesNothing) {
  OpenDisplay display;
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  display.content.SetPendingText("text");
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;
  const ThrowingImage image(std::runtime_error("no padding today"));
  const ThrowingImage shortOfMemory{std::bad_alloc()};
  const ThrowingImage odd{17};

  for (const IKrImage* foreign : {static_cast<const IKrImage*>(&image), static_cast<const IKrImage*>(&shortOfMemory),
                                  static_cast<const IKrImage*>(&odd)})
    EXPECT_EQ(display.content.Display(foreign, paint).GetCode(), KrResult::Code::Failed);

  EXPECT_THAT(log.GetRecords().front().text.ToUtf8(), testing::HasSubstr("no padding today"));
  EXPECT_EQ(display.content.GetStatistics().refused, 3u);
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(8, 8, 7));
  EXPECT_EQ(display.Look().overlayText, KrString());
}

TEST(DisplayFailure, TargetShortOfMemory_CostsTheFrame) {
  OpenDisplay display;
  const KrBuffer image = MakeImage(8, 8, KrPixel::Mono8, 7);
  display.Show(image);
  display.Paint();
  display.target.onDraw = [] { throw std::bad_alloc(); };

  EXPECT_EQ(display.Show(image), Paint::Needed);
  EXPECT_EQ(display.Paint().outcome, FrameTarget::Outcome::Dropped);

  display.target.onDraw = nullptr;
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(8, 8, 7));
}

TEST(DisplayFailure, ForeignImage_IsAskedOnceForEachValue) {
  OpenDisplay display;
  const CountingImage image(4, 4, 16);
  display.Show(&image);
  display.Paint();
  image.widths = image.heights = image.types = image.sizes = image.pointers = 0;

  display.Show(&image);

  EXPECT_EQ(image.widths, 1);
  EXPECT_EQ(image.heights, 1);
  EXPECT_EQ(image.types, 1);
  EXPECT_EQ(image.sizes, 1);
  EXPECT_EQ(image.pointers, 1);
}

TEST(DisplayFailure, ForeignImage_IsAskedWithoutALockAndMayUseTheDisplay) {
  struct CallingImage : StatedImage {
    explicit CallingImage(DisplayContent& aContent) : StatedImage(4, 4, 16), content(aContent) {}
    std::uint32_t GetWidth() const override {
      content.SetPendingText("set by the image");
      return StatedImage::GetWidth();
    }
    DisplayContent& content;
  };
  OpenDisplay display;
  const CallingImage image(display.content);

  display.Show(&image);

  EXPECT_EQ(display.Look().overlayText, KrString("set by the image"));
}

TEST(DisplayRefusalText, PixelFormatRefusedWhileNothingIsShown_IsNamedInTheWindow) {
  OpenDisplay display;
  const StatedImage image(4, 4, 16, KrPixel::BiColorRGBG8);
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;

  EXPECT_EQ(display.content.Display(&image, paint).GetCodeNumber(), 16384u);

  EXPECT_EQ(paint, Paint::Needed);
  EXPECT_THAT(display.Look().refusalText.ToUtf8(), testing::StartsWith("Cannot show pixel format BiColorRGBG8 (0x"));
}

TEST(DisplayRefusalText, OtherRefusalWhileNothingIsShown_IsItsDescription) {
  OpenDisplay display;
  const StatedImage image(0, 4, 16);
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;

  const KrResult result = display.content.Display(&image, paint);

  EXPECT_EQ(paint, Paint::Needed);
  EXPECT_EQ(display.Look().refusalText, result.GetDescription());
}

TEST(DisplayRefusalText, ImageHeld_IsNotSaid) {
  OpenDisplay display;
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  const StatedImage image(4, 4, 16, KrPixel::BiColorRGBG8);
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;

  EXPECT_FALSE(display.content.Display(&image, paint).IsOK());

  EXPECT_EQ(paint, Paint::NotNeeded);
  EXPECT_EQ(display.Look().refusalText, KrString());
}

TEST(DisplayRefusalText, AcceptedImageOrClear_RemovesIt) {
  OpenDisplay display;
  const StatedImage image(4, 4, 16, KrPixel::BiColorRGBG8);
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;
  EXPECT_FALSE(display.content.Display(&image, paint).IsOK());

  display.content.Clear();
  EXPECT_EQ(display.Look().refusalText, KrString());

  EXPECT_FALSE(display.content.Display(&image, paint).IsOK());
  display.Show(MakeImage(8, 8, KrPixel::Mono8, 7));
  EXPECT_EQ(display.Look().refusalText, KrString());
  display.content.Clear();
  EXPECT_EQ(display.Look().refusalText, KrString());
}
