#include "streamfigures.h"

#include <gtest/gtest.h>

namespace krapps {
namespace {

constexpr std::uint64_t kSecondNs = 1'000'000'000;

TEST(StreamFigures, WithoutFrames_AllIsZero) {
  EXPECT_EQ(FormatClosingLine({}, {}), "frames=0 incomplete=0 missing=0 resent=0 fps=0.00 MBps=0.00");
}

TEST(StreamFigures, OneFrame_GivesNoRate) {
  StreamFigures figures;

  figures.Add(5 * kSecondNs, 1'000'000);

  EXPECT_EQ(figures.GetFrames(), 1U);
  EXPECT_EQ(figures.GetFramesPerSecond(), 0.0);
  EXPECT_EQ(figures.GetMegabytesPerSecond(), 0.0);
}

TEST(StreamFigures, FramesAtTheSameTime_GiveNoRate) {
  StreamFigures figures;

  figures.Add(kSecondNs, 1);
  figures.Add(kSecondNs, 1);

  EXPECT_EQ(figures.GetFramesPerSecond(), 0.0);
}

TEST(StreamFigures, Rates_CountFromTheFirstFrame) {
  StreamFigures figures;

  for (std::uint64_t index = 0; index <= 20; ++index)
    figures.Add(7 * kSecondNs + index * kSecondNs / 10, 500'000);

  EXPECT_DOUBLE_EQ(figures.GetFramesPerSecond(), 10.0);
  EXPECT_DOUBLE_EQ(figures.GetMegabytesPerSecond(), 5.0);
}

TEST(StreamFigures, ClosingLine_HoldsTheStreamsCounters) {
  StreamFigures figures;
  figures.Add(0, 2'000'000);
  figures.Add(kSecondNs / 2, 2'000'000);
  KrStreamStatistics statistics;
  statistics.incomplete = 3;
  statistics.missingPackets = 4;
  statistics.resentPackets = 5;

  EXPECT_EQ(FormatClosingLine(figures, statistics), "frames=2 incomplete=3 missing=4 resent=5 fps=2.00 MBps=4.00");
}

} // namespace
} // namespace krapps
