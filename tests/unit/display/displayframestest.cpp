// Which frames are drawn when, and how they are counted.

#include "displayimages.h"
#include "krbase/krlogger.h"

#include <gmock/gmock.h>

using namespace krgui;
using namespace std::chrono_literals;

namespace {

using Outcome = FrameTarget::Outcome;
using Paint = DisplayContent::Paint;

/// A display that has painted one image of 4 x 4 pixels.
struct PaintedDisplay : OpenDisplay {
  PaintedDisplay() {
    Show(image);
    OpenDisplay::Paint();
  }
  KrBuffer image = MakeImage(4, 4, KrPixel::Mono8, 1);
};

void ExpectCounts(const DisplayContent& aContent, std::uint64_t aReceived, std::uint64_t aShown, std::uint64_t aDropped,
                  std::uint64_t aRefused) {
  const KrDisplayStatistics statistics = aContent.GetStatistics();
  EXPECT_EQ(statistics.received, aReceived);
  EXPECT_EQ(statistics.shown, aShown);
  EXPECT_EQ(statistics.dropped, aDropped);
  EXPECT_EQ(statistics.refused, aRefused);
}

} // namespace

TEST(DisplayFrames, NoTarget_AsksForAPaint) {
  PaintedDisplay display;
  display.content.SetTarget(nullptr);

  EXPECT_EQ(display.Show(display.image), Paint::Needed);

  EXPECT_EQ(display.target.drawings.size(), 1u);
}

TEST(DisplayFrames, TargetDefersOrDrops_AsksForAPaint) {
  for (const Outcome outcome : {Outcome::Deferred, Outcome::Dropped}) {
    PaintedDisplay display;
    display.target.outcome = outcome;

    EXPECT_EQ(display.Show(display.image), Paint::Needed);

    EXPECT_EQ(display.target.drawings.size(), 2u);
  }
}

TEST(DisplayFrames, NewSizeNotPaintedYet_IsNotDrawnByTheViewOfTheOldOne) {
  PaintedDisplay display;
  const KrBuffer wide = MakeImage(8, 4, KrPixel::Mono8, 2);
  display.Show(wide);

  EXPECT_EQ(display.Show(wide), Paint::Needed);

  EXPECT_EQ(display.target.drawings.size(), 1u);
  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(8, 4, 2));
}

TEST(DisplayFrames, SizesThatDifferAbove16Bits_CountAsResized) {
  PaintedDisplay display;
  const KrBuffer wide = MakeImage(65536 + 4, 4, KrPixel::Mono8, 2);

  EXPECT_EQ(display.Show(wide), Paint::Needed);

  EXPECT_EQ(display.Look().width, 65540u);
}

TEST(DisplayFrames, HeightAfterClear_IsStillTheLastOne) {
  PaintedDisplay display;
  display.content.Clear();
  // The width is 0 since, so that any image counts as resized; the geometry has the height still.
  display.Paint();

  EXPECT_EQ(display.target.GetLast().view.imageWidth, 0u);
  EXPECT_EQ(display.target.GetLast().view.imageHeight, 4u);
}

TEST(DisplayFrames, DrawnAtOnce_IsTheSourceBeforeItIsCopied) {
  PaintedDisplay display;
  KrBuffer next = MakeImage(4, 4, KrPixel::Mono8, 2);
  // Were the frame drawn from the copy, it would not see what becomes of the source while it is drawn.
  display.target.onDraw = [&] { std::memset(next.GetDataPointer(), 3, next.GetSize()); };

  display.Show(next);
  display.target.onDraw = nullptr;

  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 3));
}

TEST(DisplayFrames, EveryImage_HasANumberOfItsOwn) {
  PaintedDisplay display;
  const std::uint64_t first = display.Look().number;
  EXPECT_EQ(display.Look().number, first);

  display.Show(display.image);

  const std::uint64_t second = display.target.GetLast().number;
  EXPECT_GT(second, first);
  EXPECT_EQ(display.Look().number, second);
}

TEST(DisplayFrames, PaintOfTheWindow_UpdatesTheGeometryAndTellsOfTheBars) {
  OpenDisplay display;
  display.Show(MakeImage(400, 300, KrPixel::Mono8, 1));
  display.content.ChangeView([](ViewGeometry& aView) { aView.ZoomOneToOne(); });

  const DisplayContent::Painted painted = display.Paint();

  EXPECT_EQ(painted.outcome, Outcome::Shown);
  EXPECT_EQ(painted.bars.horizontal.kind, BarChange::Kind::Place);
  EXPECT_EQ(painted.bars.vertical.kind, BarChange::Kind::Place);
  EXPECT_EQ(display.target.GetLast().view.viewRect, (PixelRect{0, 0, 82, 82}));
}

TEST(DisplayFrames, PaintOfTheWindow_IsAskedOfTheTargetAsOne) {
  PaintedDisplay display;
  EXPECT_TRUE(display.target.GetLast().isPaint);

  display.Show(display.image);

  EXPECT_FALSE(display.target.GetLast().isPaint);
}

TEST(DisplayFrames, PaintWithoutATarget_IsDeferred) {
  DisplayContent content;

  EXPECT_EQ(content.PaintWindow(10, 10, 18).outcome, Outcome::Deferred);
}

TEST(DisplayFrames, PaintToAnotherTarget_DrawsThePresentGeometryAndCountsNothing) {
  PaintedDisplay display;
  const KrDisplayStatistics before = display.content.GetStatistics();
  RecordingTarget picture;
  picture.times = {1s, 1s};

  display.content.PaintTo(picture);

  ASSERT_EQ(picture.drawings.size(), 1u);
  EXPECT_EQ(picture.GetLast().pixels, MakeGreyPixels(4, 4, 1));
  EXPECT_EQ(picture.GetLast().view, display.target.GetLast().view);
  EXPECT_EQ(display.target.drawings.size(), 1u);
  EXPECT_EQ(display.content.GetStatistics().drawingTime, before.drawingTime);
  ExpectCounts(display.content, 1, 1, 0, 0);
}

TEST(DisplayFrames, TargetTaken_IsDrawnToNoMore) {
  PaintedDisplay display;
  RecordingTarget other;

  display.content.SetTarget(&other);
  display.Show(display.image);

  EXPECT_EQ(display.target.drawings.size(), 1u);
  EXPECT_EQ(other.drawings.size(), 1u);
}

TEST(DisplayCounts, FrameShownByAPaint_CountsOnce) {
  OpenDisplay display;

  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  ExpectCounts(display.content, 1, 0, 0, 0);
  display.Paint();
  display.Paint();

  ExpectCounts(display.content, 1, 1, 0, 0);
}

TEST(DisplayCounts, FrameDrawnAtOnce_CountsOnceThoughItIsPaintedAgain) {
  PaintedDisplay display;

  display.Show(display.image);
  ExpectCounts(display.content, 2, 2, 0, 0);
  display.Paint();

  ExpectCounts(display.content, 2, 2, 0, 0);
}

TEST(DisplayCounts, FrameReplacedBeforeItWasShown_IsDropped) {
  PaintedDisplay display;
  display.target.outcome = Outcome::Dropped;
  display.Show(display.image);
  ExpectCounts(display.content, 2, 1, 0, 0);

  display.Show(display.image);
  ExpectCounts(display.content, 3, 1, 1, 0);

  display.target.outcome = Outcome::Shown;
  display.Paint();
  ExpectCounts(display.content, 3, 2, 1, 0);
}

TEST(DisplayCounts, DeferredFrame_CountsWhenAPaintShowsIt) {
  PaintedDisplay display;
  display.target.outcome = Outcome::Deferred;
  display.Show(display.image);
  ExpectCounts(display.content, 2, 1, 0, 0);

  display.target.outcome = Outcome::Shown;
  display.Paint();

  ExpectCounts(display.content, 2, 2, 0, 0);
}

TEST(DisplayCounts, FrameClearedBeforeItWasShown_IsDropped) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));

  display.content.Clear();
  display.Paint();

  ExpectCounts(display.content, 1, 0, 1, 0);
}

TEST(DisplayCounts, WindowClosed_DropsAllButTheOneThatWaits) {
  DisplayContent content;
  const KrBuffer image = MakeImage(4, 4, KrPixel::Mono8, 1);
  auto paint = Paint::NotNeeded;

  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(content.Display(image.GetImage(), paint).IsOK());

  ExpectCounts(content, 3, 0, 2, 0);
}

TEST(DisplayCounts, RefusedFrames_CountAndTheLastReasonIsKept) {
  PaintedDisplay display;
  const KrLogCapture log;
  auto paint = Paint::NotNeeded;
  const StatedImage unknown(4, 4, 16, 0x81080123);

  EXPECT_FALSE(display.content.Display(nullptr, paint).IsOK());
  EXPECT_FALSE(display.content.Display(&unknown, paint).IsOK());
  EXPECT_EQ(display.content.GetStatistics().lastRefusal,
            KrString("Cannot convert from pixel type 2164785443 to 35651607"));
  const KrResult refused =
      display.content.Refuse(KrResult::Code::InvalidInput, {"Some::Function", "somefile", 85}, "because", paint);

  EXPECT_EQ(refused.GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(refused.GetDescription(), KrString("because"));
  EXPECT_EQ(display.content.GetStatistics().lastRefusal, KrString("because"));
  ExpectCounts(display.content, 4, 1, 0, 3);
  const KrLogRecord record = log.GetRecords().back();
  EXPECT_EQ(record.level, KrLogLevel::Error);
  EXPECT_EQ(record.function, KrString("Some::Function"));
  EXPECT_EQ(record.file, KrString("somefile"));
  EXPECT_EQ(record.line, 85);
  EXPECT_EQ(record.text, KrString("because"));
}

TEST(DisplayCounts, Times_AreThoseOfAllDrawingsAndOfCopying) {
  PaintedDisplay display;
  display.content.ResetStatistics();
  display.target.times = {3s, 5s};

  display.Show(display.image);
  display.Paint();

  const KrDisplayStatistics statistics = display.content.GetStatistics();
  EXPECT_GT(statistics.conversionTime, 6s);
  EXPECT_EQ(statistics.drawingTime, 10s);
}

TEST(DisplayCounts, ResetWhileAFrameWaits_CountsFramesThatComeLaterAlone) {
  OpenDisplay display;
  const KrBuffer image = MakeImage(4, 4, KrPixel::Mono8, 1);
  display.Show(image);

  display.content.ResetStatistics();
  ExpectCounts(display.content, 0, 0, 0, 0);
  display.Paint();
  display.Show(image);

  ExpectCounts(display.content, 1, 1, 0, 0);
  EXPECT_EQ(display.content.GetStatistics().lastRefusal, KrString());
}
