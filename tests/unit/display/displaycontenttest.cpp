#include "logic/display/displaycontent.h"

#include "krbase/krlogger.h"

#include <gmock/gmock.h>

#include <cstring>
#include <thread>

using namespace krgui;

namespace {

KrBuffer MakeImage(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::uint8_t aValue) {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(aWidth, aHeight, aType).IsOK());
  std::memset(buffer.GetDataPointer(), aValue, buffer.GetSize());
  return buffer;
}

// An image that states what it is told to, so that sizes no real buffer has can be tried.
class StatedImage : public IKrImage {
public:
  StatedImage(std::uint32_t aWidth, std::uint32_t aHeight, std::size_t aSize, KrPixelType aType = KrPixel::Mono8)
      : mWidth(aWidth), mHeight(aHeight), mSize(aSize), mType(aType), mData(16, 0) {}
  std::uint32_t GetWidth() const override { return mWidth; }
  std::uint32_t GetHeight() const override { return mHeight; }
  KrPixelType GetPixelType() const override { return mType; }
  std::uint32_t GetPaddingX() const override { return 0; }
  std::uint32_t GetPaddingY() const override { return 0; }
  std::size_t GetImageSize() const override { return mSize; }
  const std::uint8_t* GetDataPointer() const override { return mData.data(); }
  std::uint8_t* GetDataPointer() override { return mData.data(); }
  KrResult Alloc(std::uint32_t, std::uint32_t, KrPixelType, std::uint32_t, std::uint32_t) override {
    return KrResult::Code::NotOffered;
  }

private:
  std::uint32_t mWidth, mHeight;
  std::size_t mSize;
  KrPixelType mType;
  std::vector<std::uint8_t> mData;
};

KrString GetShownText(DisplayContent& aContent) {
  KrString text;
  aContent.Paint(100, 100, [&](const DisplayContent::Frame& aFrame) { text = aFrame.overlayText; });
  return text;
}

struct RefusedSize {
  const char* name;
  std::uint32_t width, height;
  std::size_t size;
  const char* text;
};

constexpr RefusedSize kRefusedSizes[] = {
    {"width 0", 0, 4, 16,
     "The width, height and size of the buffer must be greater than 0 (width=0, height=4, size=16"},
    {"height 0", 4, 0, 16,
     "The width, height and size of the buffer must be greater than 0 (width=4, height=0, size=16"},
    {"size 0", 4, 4, 0, "The width, height and size of the buffer must be greater than 0 (width=4, height=4, size=0"},
    {"width 65536, whose low 16 bits are 0", 65536, 4, 16,
     "The width, height and size of the buffer must be greater than 0 (width=0, height=4, size=16"},
    {"height 131072, whose low 16 bits are 0", 4, 131072, 16,
     "The width, height and size of the buffer must be greater than 0 (width=4, height=0, size=16"},
};

} // namespace

TEST(DisplayContent_Display, EmptySize_IsRefusedWithTheSizesAndChangesNothing) {
  for (const RefusedSize& row : kRefusedSizes) {
    SCOPED_TRACE(row.name);
    DisplayContent content;
    const KrBuffer shown = MakeImage(2, 2, KrPixel::Mono8, 7);
    ASSERT_TRUE(content.Display(shown.GetImage()).IsOK());
    content.SetPendingText("later");
    const StatedImage image(row.width, row.height, row.size);
    const KrLogCapture log;

    const KrResult result = content.Display(&image);

    EXPECT_EQ(result.GetCodeNumber(), 1281u);
    EXPECT_EQ(result.GetDescription(), KrString(row.text));
    ASSERT_EQ(log.GetRecords().size(), 1u);
    const KrLogRecord record = log.GetRecords().front();
    EXPECT_EQ(record.level, KrLogLevel::Error);
    EXPECT_EQ(record.channel, KrString("KrGUILib"));
    EXPECT_EQ(record.function, KrString("DisplayWnd::Display"));
    EXPECT_EQ(record.file, KrString("displaywnd"));
    EXPECT_EQ(record.line, 156);
    EXPECT_EQ(record.text, KrString(row.text));
    EXPECT_EQ(content.GetInternalBuffer().GetImage()->GetWidth(), 2u);
    EXPECT_EQ(GetShownText(content), KrString());
  }
}

TEST(DisplayContent_Display, NullImage_IsInvalidInput) {
  DisplayContent content;
  const KrLogCapture log;

  const KrResult result = content.Display(nullptr);

  EXPECT_EQ(result.GetCodeNumber(), 1281u);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
}

TEST(DisplayContent_Display, PixelTypeWithoutConversion_IsRefusedNamingBothTypes) {
  DisplayContent content;
  const StatedImage image(4, 4, 16, 0x81080123);
  const KrLogCapture log;

  const KrResult result = content.Display(&image);

  const KrString text = "Cannot convert from pixel type 2164785443 to 35651607";
  EXPECT_EQ(result.GetCodeNumber(), 16384u);
  EXPECT_EQ(result.GetDescription(), text);
  EXPECT_TRUE(log.Contains(KrLogLevel::Error, text));
  const KrLogRecord record = log.GetRecords().front();
  EXPECT_EQ(record.line, 162);
  EXPECT_EQ(record.channel, KrString("KrGUILib"));
  EXPECT_EQ(record.function, KrString("DisplayWnd::Display"));
  EXPECT_EQ(record.file, KrString("displaywnd"));
  EXPECT_EQ(content.GetInternalBuffer().GetSize(), 0u);
}

TEST(DisplayContent_Display, Mono8Image_IsHeldAsBGRa8) {
  DisplayContent content;
  const KrBuffer buffer = MakeImage(3, 2, KrPixel::Mono8, 0x5A);

  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());

  const IKrImage* shown = content.GetInternalBuffer().GetImage();
  EXPECT_EQ(shown->GetPixelType(), 0x02200017u);
  EXPECT_EQ(shown->GetWidth(), 3u);
  EXPECT_EQ(shown->GetHeight(), 2u);
  const std::vector<std::uint8_t> pixels(shown->GetDataPointer(), shown->GetDataPointer() + 3 * 2 * 4);
  const std::vector<std::uint8_t> pixel = {0x5A, 0x5A, 0x5A, 0xFF};
  for (std::size_t i = 0; i < pixels.size(); ++i)
    EXPECT_EQ(pixels[i], pixel[i % 4]) << i;
}

TEST(DisplayContent_Display, ImageOfAnotherSize_MakesTheViewDirtyAndOneOfTheSameSizeDoesNot) {
  DisplayContent content;
  const KrBuffer small = MakeImage(4, 4, KrPixel::Mono8, 1);
  const KrBuffer large = MakeImage(8, 4, KrPixel::Mono8, 1);
  ASSERT_TRUE(content.Display(small.GetImage()).IsOK());
  EXPECT_TRUE(content.IsViewDirty());
  GetShownText(content);
  EXPECT_FALSE(content.IsViewDirty());

  ASSERT_TRUE(content.Display(small.GetImage()).IsOK());
  EXPECT_FALSE(content.IsViewDirty());

  ASSERT_TRUE(content.Display(large.GetImage()).IsOK());
  EXPECT_TRUE(content.IsViewDirty());
}

TEST(DisplayContent_Display, ApplicationUsedTheInternalBufferOtherwise_StillShowsTheNextImage) {
  DisplayContent content;
  content.GetInternalBuffer().SetPayloadType(KrPayloadType::File);
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 9);

  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());

  ASSERT_NE(content.GetInternalBuffer().GetImage(), nullptr);
  EXPECT_EQ(content.GetInternalBuffer().GetDataPointer()[0], 9);
}

TEST(DisplayContent_Display, TruncatedImageOfANewSize_SucceedsAndShowsWhatTheInternalBufferHolds) {
  DisplayContent content;
  const KrBuffer buffer = MakeImage(2, 2, KrPixel::Mono8, 7);
  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());
  // It says 64 x 64 pixels, and that it has sixteen bytes.
  const StatedImage truncated(64, 64, 16);

  EXPECT_TRUE(content.Display(&truncated).IsOK());

  content.Paint(100, 100, [&](const DisplayContent::Frame& aFrame) {
    ASSERT_NE(aFrame.image, nullptr);
    EXPECT_EQ(aFrame.image, content.GetInternalBuffer().GetImage());
    EXPECT_GE(content.GetInternalBuffer().GetSize(),
              std::size_t{aFrame.image->GetWidth()} * aFrame.image->GetHeight() * 4);
  });
}

TEST(DisplayContent_Paint, ApplicationPutAnotherFormatIntoTheInternalBuffer_DrawsNoImage) {
  DisplayContent content;
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 1);
  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());
  const auto expectNoImage = [&] {
    content.Paint(100, 100, [](const DisplayContent::Frame& aFrame) { EXPECT_EQ(aFrame.image, nullptr); });
  };

  ASSERT_TRUE(content.GetInternalBuffer().GetImage()->Alloc(640, 480, KrPixel::Mono8).IsOK());
  expectNoImage();
  ASSERT_TRUE(content.GetInternalBuffer().GetImage()->Alloc(640, 480, KrPixel::BGRa8, 12).IsOK());
  expectNoImage();
  ASSERT_TRUE(content.GetInternalBuffer().Alloc(10).IsOK());
  expectNoImage();
  content.GetInternalBuffer().SetPayloadType(KrPayloadType::File);
  expectNoImage();
}

TEST(DisplayContent_Overlay, TextSetAfterAnImage_IsShownFromTheNextImageOn) {
  DisplayContent content;
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 1);
  content.SetPendingText("first");
  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());

  content.SetPendingText("second");

  EXPECT_EQ(GetShownText(content), KrString("first"));
  EXPECT_EQ(content.GetPendingText(), KrString("second"));
  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());
  EXPECT_EQ(GetShownText(content), KrString("second"));
}

TEST(DisplayContent_Overlay, NoImageHeld_IsNotDrawn) {
  DisplayContent content;

  content.SetPendingText("text");

  content.Paint(100, 100, [](const DisplayContent::Frame& aFrame) {
    EXPECT_EQ(aFrame.image, nullptr);
    EXPECT_TRUE(aFrame.overlayText.IsEmpty());
    EXPECT_TRUE(aFrame.view.destinationRect.IsEmpty());
    EXPECT_EQ(aFrame.view.clientRect, (PixelRect{0, 0, 100, 100}));
  });
}

TEST(DisplayContent_Clear, ImageAndTexts_AreGone) {
  DisplayContent content;
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 1);
  content.SetPendingText("text");
  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());

  content.Clear();

  EXPECT_EQ(content.GetInternalBuffer().GetSize(), 0u);
  EXPECT_EQ(content.GetPendingText(), KrString());
  content.Paint(10, 10, [](const DisplayContent::Frame& aFrame) { EXPECT_EQ(aFrame.image, nullptr); });
}

TEST(DisplayContent_Clear, SameImageAgain_CountsAsResizedAsItsWidthWasForgotten) {
  DisplayContent content;
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 1);
  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());
  GetShownText(content);

  content.Clear();

  ASSERT_TRUE(content.Display(buffer.GetImage()).IsOK());
  EXPECT_TRUE(content.IsViewDirty());
}

TEST(DisplayContent_Clear, NothingHeld_ClearsThePendingText) {
  DisplayContent content;
  content.SetPendingText("text");

  content.Clear();

  EXPECT_EQ(content.GetPendingText(), KrString());
}

TEST(DisplayContent_Style, NothingSet_HasTheDefaults) {
  DisplayContent content;

  const DisplayStyle& style = content.GetStyle();

  EXPECT_EQ(style.backgroundColor, 0x808080u);
  EXPECT_EQ(style.overlayColor, 0x00FF00u);
  EXPECT_EQ(style.overlaySize, 20);
  EXPECT_EQ(style.overlayOffsetX, 10u);
  EXPECT_EQ(style.overlayOffsetY, 10u);
}

TEST(MakeColorRef, Components_StandWithRedLowest) {
  EXPECT_EQ(MakeColorRef(0x12, 0x34, 0x56), 0x563412u);
  EXPECT_EQ(GetRed(0x563412), 0x12);
  EXPECT_EQ(GetGreen(0x563412), 0x34);
  EXPECT_EQ(GetBlue(0x563412), 0x56);
}

TEST(DisplayContent_Threads, DisplayingPaintingAndClearingAtOnce_NeverMixesSizes) {
  DisplayContent content;
  const KrBuffer small = MakeImage(16, 16, KrPixel::Mono8, 1);
  const KrBuffer large = MakeImage(64, 48, KrPixel::Mono8, 2);
  std::jthread first([&] {
    for (int i = 0; i < 500; ++i)
      EXPECT_TRUE(content.Display((i % 2 ? small : large).GetImage()).IsOK());
  });
  std::jthread second([&] {
    for (int i = 0; i < 200; ++i) {
      content.SetPendingText("text");
      content.Clear();
    }
  });

  for (int i = 0; i < 500; ++i)
    content.Paint(100, 100, [](const DisplayContent::Frame& aFrame) {
      if (!aFrame.image)
        return;
      const bool isSmall = aFrame.image->GetWidth() == 16;
      EXPECT_EQ(aFrame.image->GetHeight(), isSmall ? 16u : 48u);
      EXPECT_EQ(aFrame.image->GetDataPointer()[0], isSmall ? 1 : 2);
      EXPECT_EQ(aFrame.view.sourceRect.right, isSmall ? 16 : 64);
    });
}
