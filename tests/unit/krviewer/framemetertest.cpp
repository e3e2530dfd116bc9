#include "acquisition/framemeter.h"
#include "acquisition/overlaytext.h"

#include <gtest/gtest.h>

using krviewer::FrameMeter;

namespace {

constexpr std::uint64_t kMillisecond = 1'000'000;

} // namespace

TEST(FrameMeter, FewerThanTwoFrames_HasNoRate) {
  FrameMeter meter;
  EXPECT_EQ(meter.GetFramesPerSecond(), 0.0);

  meter.Add(5 * kMillisecond, 1000);

  EXPECT_EQ(meter.GetFramesPerSecond(), 0.0);
  EXPECT_EQ(meter.GetMegabytesPerSecond(), 0.0);
}

TEST(FrameMeter, EvenFrames_GiveTheirRateAndData) {
  FrameMeter meter;

  for (std::uint64_t i = 0; i < 200; ++i)
    meter.Add(i * 10 * kMillisecond, 2'000'000);

  EXPECT_NEAR(meter.GetFramesPerSecond(), 100.0, 1e-9);
  EXPECT_NEAR(meter.GetMegabytesPerSecond(), 200.0, 1e-9);
}

TEST(FrameMeter, RateThatChanged_ShowsAfterASecond) {
  FrameMeter meter;
  for (std::uint64_t i = 0; i <= 100; ++i)
    meter.Add(i * 10 * kMillisecond, 1);

  for (std::uint64_t i = 1; i <= 11; ++i)
    meter.Add((1000 + i * 100) * kMillisecond, 1);

  EXPECT_NEAR(meter.GetFramesPerSecond(), 10.0, 1e-9);
}

TEST(FrameMeter, CameraSlowerThanAFrameASecond_StillHasARate) {
  FrameMeter meter;

  meter.Add(0, 1);
  meter.Add(4000 * kMillisecond, 1);
  meter.Add(8000 * kMillisecond, 1);

  EXPECT_NEAR(meter.GetFramesPerSecond(), 0.25, 1e-9);
}

TEST(FrameMeter, TwoFramesAtTheSameTime_HaveNoRateRatherThanAnEndlessOne) {
  FrameMeter meter;

  meter.Add(7, 1);
  meter.Add(7, 1);

  EXPECT_EQ(meter.GetFramesPerSecond(), 0.0);
}

TEST(BreakIntoSentences, SeveralSentences_StandInLinesOfTheirOwn) {
  EXPECT_EQ(krviewer::BreakIntoSentences("The camera at 10.0.0.1 was lost. Check its cable."),
            KrString("The camera at 10.0.0.1 was lost.\nCheck its cable."));
  EXPECT_EQ(krviewer::BreakIntoSentences("One."), KrString("One."));
}

TEST(FormatOverlay, RatesAndLosses_StandInTwoLines) {
  FrameMeter meter;
  meter.Add(0, 1'500'000);
  meter.Add(500 * kMillisecond, 1'500'000);

  const KrString text = krviewer::FormatOverlay(meter, {.incomplete = 1, .missingPackets = 22, .resentPackets = 3});

  EXPECT_EQ(text, KrString("2.0 frames/s   3.0 MB/s\nincomplete 1   missing packets 22   resent 3"));
}

TEST(FrameMeter, FramesThatEnded_AreStaleAfterTwoSeconds) {
  FrameMeter meter;
  EXPECT_TRUE(meter.IsStale(0));

  for (std::uint64_t i = 0; i <= 10; ++i)
    meter.Add(i * 100 * kMillisecond, 1);

  EXPECT_FALSE(meter.IsStale(3000 * kMillisecond));
  EXPECT_TRUE(meter.IsStale(3001 * kMillisecond));
}

TEST(FrameMeter, SlowCamera_IsStaleAfterThreeOfItsIntervals) {
  FrameMeter meter;
  meter.Add(0, 1);
  meter.Add(4000 * kMillisecond, 1);

  EXPECT_FALSE(meter.IsStale(16000 * kMillisecond));
  EXPECT_TRUE(meter.IsStale(16001 * kMillisecond));
}
