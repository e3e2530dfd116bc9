#include "displayimages.h"
#include "krbase/krlogger.h"

#include <gmock/gmock.h>

#include <new>
#include <stdexcept>

using namespace krgui;

namespace {

using Paint = DisplayContent::Paint;

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
    {"size whose low 32 bits are 0", 4, 4, std::size_t{1} << 32,
     "The width, height and size of the buffer must be greater than 0 (width=4, height=4, size=0"},
    {"width 65536, whose low 16 bits are 0", 65536, 4, 16,
     "The width, height and size of the buffer must be greater than 0 (width=0, height=4, size=16"},
    {"height 131072, whose low 16 bits are 0", 4, 131072, 16,
     "The width, height and size of the buffer must be greater than 0 (width=4, height=0, size=16"},
};

void ExpectRecord(const KrLogCapture& aLog, const char* aText, int aLine) {
  ASSERT_EQ(aLog.GetRecords().size(), 1u);
  const KrLogRecord record = aLog.GetRecords().front();
  EXPECT_EQ(record.level, KrLogLevel::Error);
  EXPECT_EQ(record.channel, KrString("KrGUILib"));
  EXPECT_EQ(record.function, KrString("DisplayWnd::Display"));
  EXPECT_EQ(record.file, KrString("displaywnd"));
  EXPECT_EQ(record.line, aLine);
  EXPECT_EQ(record.text, KrString(aText));
}

} // namespace

TEST(DisplayContent_Display, EmptySize_IsRefusedWithTheSizesAndChangesNothing) {
  for (const RefusedSize& row : kRefusedSizes) {
    SCOPED_TRACE(row.name);
    OpenDisplay display;
    display.Show(MakeImage(2, 2, KrPixel::Mono8, 7));
    display.content.SetPendingText("later");
    const StatedImage image(row.width, row.height, row.size);
    const KrLogCapture log;
    Paint paint = Paint::Needed;

    const KrResult result = display.content.Display(&image, paint);

    EXPECT_EQ(result.GetCodeNumber(), 1281u);
    EXPECT_EQ(result.GetDescription(), KrString(row.text));
    ExpectRecord(log, row.text, 156);
    EXPECT_EQ(paint, Paint::NotNeeded);
    EXPECT_EQ(display.Look().pixels, MakeGreyPixels(2, 2, 7));
    EXPECT_EQ(display.Look().overlayText, KrString());
  }
}

TEST(DisplayContent_Display, NullImage_IsInvalidInput) {
  DisplayContent content;
  const KrLogCapture log;
  Paint paint = Paint::NotNeeded;

  const KrResult result = content.Display(nullptr, paint);

  EXPECT_EQ(result.GetCodeNumber(), 1281u);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
}

TEST(DisplayContent_Display, PixelTypeWithoutConversion_IsRefusedNamingBothTypes) {
  DisplayContent content;
  const StatedImage image(4, 4, 16, 0x81080123);
  const KrLogCapture log;
  Paint paint = Paint::NotNeeded;

  const KrResult result = content.Display(&image, paint);

  const char* text = "Cannot convert from pixel type 2164785443 to 35651607";
  EXPECT_EQ(result.GetCodeNumber(), 16384u);
  EXPECT_EQ(result.GetDescription(), KrString(text));
  ExpectRecord(log, text, 162);
  EXPECT_EQ(content.GetInternalBuffer().GetSize(), 0u);
}

TEST(DisplayContent_Display, ImageWithoutASizeOfATypeWithoutConversion_IsRefusedForItsSize) {
  DisplayContent content;
  const StatedImage image(0, 4, 16, 0x81080123);
  const KrLogCapture log;
  Paint paint = Paint::NotNeeded;

  const KrResult result = content.Display(&image, paint);

  EXPECT_EQ(result.GetCodeNumber(), 1281u);
  EXPECT_THAT(result.GetDescription().ToUtf8(),
              testing::StartsWith("The width, height and size of the buffer must be"));
}

TEST(DisplayContent_Display, Mono8Image_IsShownAsBGRa8) {
  OpenDisplay display;

  display.Show(MakeImage(3, 2, KrPixel::Mono8, 0x5A));

  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(3, 2, 0x5A));
  const IKrImage* shown = display.content.GetInternalBuffer().GetImage();
  EXPECT_EQ(shown->GetPixelType(), 0x02200017u);
  EXPECT_EQ(shown->GetWidth(), 3u);
  EXPECT_EQ(shown->GetHeight(), 2u);
}

TEST(DisplayContent_Display, SourceFreedAfterwards_IsStillShown) {
  OpenDisplay display;
  {
    const KrBuffer buffer = MakeImage(3, 2, KrPixel::Mono8, 0x5A);
    display.Show(buffer);
    std::memset(const_cast<std::uint8_t*>(buffer.GetDataPointer()), 0, buffer.GetSize());
  }

  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(3, 2, 0x5A));
}

TEST(DisplayContent_Display, SecondImageOfTheSameSize_IsDrawnAtOnce) {
  OpenDisplay display;
  EXPECT_EQ(display.Show(MakeImage(4, 4, KrPixel::Mono8, 1)), Paint::Needed);
  EXPECT_TRUE(display.target.drawings.empty());
  display.Paint();

  const Paint paint = display.Show(MakeImage(4, 4, KrPixel::Mono8, 2));

  EXPECT_EQ(paint, Paint::NotNeeded);
  ASSERT_EQ(display.target.drawings.size(), 2u);
  EXPECT_EQ(display.target.GetLast().pixels, MakeGreyPixels(4, 4, 2));
}

TEST(DisplayContent_Display, ImageOfAnotherSize_AsksForAPaint) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  display.Paint();

  const Paint paint = display.Show(MakeImage(8, 4, KrPixel::Mono8, 2));

  EXPECT_EQ(paint, Paint::Needed);
  EXPECT_EQ(display.target.drawings.size(), 1u);
  EXPECT_EQ(display.Look().width, 8u);
  EXPECT_EQ(display.target.GetLast().view.imageWidth, 8u);
}

TEST(DisplayContent_Display, SizeThatComesAgainBeforeAPaint_PlacesTheBarsAnew) {
  OpenDisplay display;
  const KrBuffer image = MakeImage(400, 300, KrPixel::Mono8, 1);
  display.Show(image);
  display.content.ChangeView([](ViewGeometry& aView) { aView.ZoomOneToOne(); });
  display.Paint();
  ASSERT_EQ(display.Paint().bars.horizontal.kind, BarChange::Kind::None);

  display.content.Clear();
  display.Show(image);

  EXPECT_EQ(display.Paint().bars.horizontal.kind, BarChange::Kind::Place);
}

TEST(DisplayContent_Display, RefusedImagesOfAnotherSize_LeaveTheNextOneOfTheFormerSizeToBeDrawnAtOnce) {
  OpenDisplay display;
  const KrBuffer image = MakeImage(4, 4, KrPixel::Mono8, 1);
  display.Show(image);
  display.Paint();
  const StatedImage withoutSize(8, 2, 0);
  const StatedImage withoutConversion(8, 2, 16, 0x81080123);
  const KrLogCapture log;
  Paint paint = Paint::NotNeeded;
  ASSERT_FALSE(display.content.Display(&withoutSize, paint).IsOK());
  ASSERT_FALSE(display.content.Display(&withoutConversion, paint).IsOK());

  EXPECT_EQ(display.Show(image), Paint::NotNeeded);

  EXPECT_EQ(display.target.drawings.size(), 2u);
}

TEST(DisplayContent_Overlay, TextSetAfterAnImage_IsShownFromTheNextImageOn) {
  OpenDisplay display;
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 1);
  display.content.SetPendingText("first");
  display.Show(buffer);

  display.content.SetPendingText("second");

  EXPECT_EQ(display.Look().overlayText, KrString("first"));
  EXPECT_EQ(display.content.GetPendingText(), KrString("second"));
  display.Show(buffer);
  EXPECT_EQ(display.Look().overlayText, KrString("second"));
}

TEST(DisplayContent_Overlay, NoImageHeld_IsNotDrawn) {
  OpenDisplay display;

  display.content.SetPendingText("text");

  const RecordingTarget::Drawing& drawing = display.Look();
  EXPECT_FALSE(drawing.hasImage);
  EXPECT_TRUE(drawing.overlayText.IsEmpty());
  EXPECT_EQ(drawing.view.clientRect, (PixelRect{0, 0, 100, 100}));
}

TEST(DisplayContent_Clear, ImageAndTexts_AreGone) {
  OpenDisplay display;
  display.content.SetPendingText("text");
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));

  display.content.Clear();

  EXPECT_EQ(display.content.GetInternalBuffer().GetSize(), 0u);
  EXPECT_EQ(display.content.GetPendingText(), KrString());
  EXPECT_FALSE(display.Look().hasImage);
}

TEST(DisplayContent_Clear, SameImageAgain_CountsAsResizedAsItsWidthWasForgotten) {
  OpenDisplay display;
  const KrBuffer buffer = MakeImage(4, 4, KrPixel::Mono8, 1);
  display.Show(buffer);
  display.Paint();

  display.content.Clear();

  EXPECT_EQ(display.Show(buffer), Paint::Needed);
}

TEST(DisplayContent_Clear, NothingHeld_ClearsThePendingText) {
  DisplayContent content;
  content.SetPendingText("text");

  content.Clear();

  EXPECT_EQ(content.GetPendingText(), KrString());
}

TEST(DisplayContent_Clear, StyleAndZoom_StayAsTheyAre) {
  OpenDisplay display;
  display.content.GetStyle().backgroundColor = 0x102030;
  display.content.GetStyle().overlayColor = 0x405060;
  display.content.GetStyle().overlaySize = 33;
  display.content.GetStyle().overlayOffsetX = 7;
  display.content.GetStyle().overlayOffsetY = 8;
  display.Show(MakeImage(400, 300, KrPixel::Mono8, 1));
  display.content.ChangeView([](ViewGeometry& aView) { aView.ZoomOneToOne(); });
  display.Paint();

  display.content.Clear();

  EXPECT_EQ(display.content.GetStyle().backgroundColor.load(), 0x102030u);
  EXPECT_EQ(display.content.GetStyle().overlayColor.load(), 0x405060u);
  EXPECT_EQ(display.content.GetStyle().overlaySize.load(), 33);
  EXPECT_EQ(display.content.GetStyle().overlayOffsetX.load(), 7u);
  EXPECT_EQ(display.content.GetStyle().overlayOffsetY.load(), 8u);
  const ZoomMode mode = display.content.ChangeView([](ViewGeometry& aView) { return aView.GetZoomMode(); });
  EXPECT_EQ(mode, ZoomMode::OneToOne);
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
