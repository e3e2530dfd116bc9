// What the display tells of itself: counts, refusals, and the pixel under the cursor.

#include "displayfixture.h"

#include "await.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using KrDisplayWndStatisticsTest = KrDisplayWndTest;

constexpr KrPixelType kUnknownType = 0x01080FFF;

// Counts the paints of a widget.
class PaintCounter : public QObject {
public:
  explicit PaintCounter(QWidget& aWidget) { aWidget.installEventFilter(this); }

  bool eventFilter(QObject*, QEvent* aEvent) override {
    paints += aEvent->type() == QEvent::Paint ? 1 : 0;
    return false;
  }

  std::uint64_t paints = 0;
};

// An image in a format that nobody knows.
KrBuffer MakeUnknown() {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(4, 4, kUnknownType).IsOK());
  return buffer;
}

} // namespace

TEST_F(KrDisplayWndStatisticsTest, Counts_OfAnOpenWindow_SayWhatBecameOfEachFrame) {
  Open(100, 100);

  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(mWindow.Display(MakeGrey(10, 10, 5), false).IsOK());
    Grab();
  }
  EXPECT_EQ(mWindow.Display(MakeUnknown(), false).GetCodeNumber(), 16384u);
  EXPECT_EQ(mWindow.Display(KrBuffer(KrPayloadType::ChunkData), false).GetCodeNumber(), 1281u);

  const KrDisplayStatistics statistics = mWindow.GetStatistics();
  EXPECT_EQ(statistics.received, 5u);
  EXPECT_EQ(statistics.shown, 3u);
  EXPECT_EQ(statistics.dropped, 0u);
  EXPECT_EQ(statistics.refused, 2u);
  EXPECT_EQ(statistics.lastRefusal, KrString("aBuffer payload type not image"));
  EXPECT_GT(statistics.conversionTime.count(), 0);
  EXPECT_GT(statistics.drawingTime.count(), 0);
}

TEST_F(KrDisplayWndStatisticsTest, Counts_OfAClosedWindow_CallReplacedFramesDropped) {
  for (int i = 0; i < 4; ++i)
    EXPECT_TRUE(mWindow.Display(MakeGrey(10, 10, 5), false).IsOK());

  Open(100, 100);
  Grab();

  EXPECT_EQ(mWindow.GetStatistics().shown, 1u);
  EXPECT_EQ(mWindow.GetStatistics().dropped, 3u);
}

TEST_F(KrDisplayWndStatisticsTest, Counts_WhileCamerasGoAtFullRate_CallNoMoreFramesShownThanWerePainted) {
  constexpr std::uint64_t kPaints = 300;
  Open(300, 200);
  const KrBuffer frame = MakeNoise(64, 48);
  ASSERT_TRUE(mWindow.Display(frame, false).IsOK());
  Grab();
  PaintCounter counter(GetView());
  mWindow.ResetStatistics();
  {
    const auto run = [&](const std::stop_token& aStop) {
      while (!aStop.stop_requested())
        EXPECT_TRUE(mWindow.Display(frame, false).IsOK());
    };
    const std::jthread cameras[] = {std::jthread(run), std::jthread(run), std::jthread(run)};
    // Each paint has new frames before it, which may come during it too.
    for (std::uint64_t received = 0; counter.paints < kPaints; received = mWindow.GetStatistics().received) {
      EXPECT_TRUE(krtest::Await([&] { return mWindow.GetStatistics().received != received; }));
      GetView().repaint();
    }
  }

  EXPECT_GT(mWindow.GetStatistics().shown, 0u);
  EXPECT_LE(mWindow.GetStatistics().shown, counter.paints);
}

TEST_F(KrDisplayWndStatisticsTest, Reset_OfAll_BeginsAnew) {
  EXPECT_TRUE(mWindow.Display(MakeGrey(10, 10, 5), false).IsOK());
  EXPECT_FALSE(mWindow.Display(MakeUnknown(), false).IsOK());

  mWindow.ResetStatistics();

  EXPECT_EQ(mWindow.GetStatistics().received, 0u);
  EXPECT_EQ(mWindow.GetStatistics().refused, 0u);
  EXPECT_EQ(mWindow.GetStatistics().lastRefusal, KrString());
}

TEST_F(KrDisplayWndStatisticsTest, Refusal_InAnEmptyWindow_IsWrittenThereUntilAnImageComes) {
  Open(400, 200);
  const auto isPlain = [&](const QImage& aPicture, int aGrey) {
    return plainpicture::Count(aPicture, aPicture.rect(), QColor(aGrey, aGrey, aGrey)) ==
           aPicture.width() * aPicture.height();
  };
  ASSERT_TRUE(isPlain(Grab(), 0x80));

  EXPECT_FALSE(mWindow.Display(MakeUnknown(), false).IsOK());

  EXPECT_FALSE(isPlain(Grab(), 0x80));
  EXPECT_TRUE(mWindow.Display(MakeGrey(400, 200, 9), false).IsOK());
  EXPECT_TRUE(isPlain(Grab(), 9));
  EXPECT_FALSE(mWindow.Display(MakeUnknown(), false).IsOK());
  EXPECT_TRUE(isPlain(Grab(), 9));
}

TEST_F(KrDisplayWndStatisticsTest, Refusal_OnAnyBackground_StandsOutFromIt) {
  Open(400, 200);
  EXPECT_FALSE(mWindow.Display(MakeUnknown(), false).IsOK());
  for (const auto& [background, text] : {std::pair{0x00, 0xFF}, {0x80, 0x00}, {0xFF, 0x00}}) {
    const auto grey = static_cast<unsigned char>(background);
    EXPECT_TRUE(mWindow.SetBackgroundColor(grey, grey, grey).IsOK());

    const QImage picture = Grab();

    EXPECT_GT(plainpicture::Count(picture, picture.rect(), QColor(text, text, text)), 20) << background;
  }
}

TEST_F(KrDisplayWndStatisticsTest, CursorPixel_UnderTheMouse_IsItsPlaceAndWhatTheSensorSent) {
  Open(200, 100);
  const KrBuffer noise = MakeNoise(20, 10);
  ASSERT_TRUE(mWindow.Display(noise, false).IsOK());
  Grab();
  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());

  QTest::mouseMove(&GetView(), QPoint(155, 33));

  const auto pixel = mWindow.GetCursorPixel();
  ASSERT_TRUE(pixel.has_value());
  EXPECT_EQ(pixel->x, 15u);
  EXPECT_EQ(pixel->y, 3u);
  const std::uint8_t value = noise.GetDataPointer()[3 * 20 + 15];
  EXPECT_EQ(pixel->raw.sampleCount, 1);
  EXPECT_EQ(pixel->raw.samples[0], value);
  EXPECT_EQ(pixel->red, value);
  EXPECT_EQ(pixel->green, value);
  EXPECT_EQ(pixel->blue, value);
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&GetView(), &leave);
  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());
}

TEST_F(KrDisplayWndStatisticsTest, CursorPixel_BesideTheImage_IsNone) {
  Open(300, 100);
  ASSERT_TRUE(mWindow.Display(MakeNoise(10, 10), false).IsOK());
  Grab();

  QTest::mouseMove(&GetView(), QPoint(20, 50));

  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());
}

TEST_F(KrDisplayWndStatisticsTest, CursorLine_TurnedOn_StandsInTheLowerLeftCornerAndFollowsTheMouse) {
  Open(300, 200);
  const KrBuffer white = MakeGrey(300, 200, 255);
  ASSERT_TRUE(mWindow.Display(white, false).IsOK());
  const QImage without = Grab();
  QTest::mouseMove(&GetView(), QPoint(250, 20));
  EXPECT_EQ(plainpicture::Compare(Grab(), without), "");

  mWindow.SetCursorLineEnabled(true);

  EXPECT_TRUE(mWindow.IsCursorLineEnabled());
  const QImage first = Grab();
  const QRect line = plainpicture::FindDifference(first, without);
  EXPECT_EQ(line.left(), 0);
  EXPECT_EQ(line.bottom(), first.height() - 1);
  EXPECT_LT(line.height(), 40 * GetRatio());
  // White letters on a dark plate, though the image is white.
  EXPECT_LT(without.pixelColor(line.topLeft()).green() - 255, 1);
  EXPECT_LT(first.pixelColor(line.topLeft()).green(), 120);
  QTest::mouseMove(&GetView(), QPoint(111, 20));
  EXPECT_NE(plainpicture::Compare(Grab(), first), "");
  mWindow.SetCursorLineEnabled(false);
  EXPECT_EQ(plainpicture::Compare(Grab(), without), "");
}
