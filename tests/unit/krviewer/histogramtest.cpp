#include "panels/histogram.h"

#include "graphframes.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>

using krviewer::GatherColumns;
using krviewer::Histogram;
using krviewer::HistogramChannel;
using testing::ElementsAre;

namespace {

constexpr std::uint32_t kWidth = 37;
constexpr std::uint32_t kHeight = 11;

/// What a plain loop says of the values of one colour.
struct Expected {
  std::map<std::int64_t, std::uint32_t> counts;

  void Add(std::int64_t aValue) { ++counts[aValue]; }
};

void ExpectChannel(const HistogramChannel& aChannel, const Expected& aExpected, std::int64_t aLowestValue) {
  double pixels = 0;
  double sum = 0;
  double squares = 0;
  std::map<std::int64_t, std::uint32_t> counts;
  for (std::size_t i = 0; i < aChannel.counts.size(); ++i)
    if (aChannel.counts[i] > 0)
      counts[aLowestValue + static_cast<std::int64_t>(i)] = aChannel.counts[i];
  EXPECT_EQ(counts, aExpected.counts) << aChannel.component;
  for (const auto& [value, count] : aExpected.counts) {
    pixels += count;
    sum += static_cast<double>(value) * count;
    squares += static_cast<double>(value) * static_cast<double>(value) * count;
  }
  EXPECT_EQ(static_cast<double>(aChannel.pixels), pixels);
  EXPECT_NEAR(aChannel.mean, sum / pixels, 1e-9);
  EXPECT_NEAR(aChannel.deviation, std::sqrt(squares / pixels - sum / pixels * (sum / pixels)), 1e-6);
  EXPECT_EQ(aChannel.lowest, aExpected.counts.begin()->first);
  EXPECT_EQ(aChannel.highest, aExpected.counts.rbegin()->first);
}

std::uint32_t GetStep(std::uint32_t aSample, std::uint32_t aLine) {
  return aSample * 29 + aLine * 113;
}

} // namespace

TEST(Histogram, Mono8_CountsEachPixel) {
  const auto sample = [](auto aSample, auto aLine) { return GetStep(aSample, aLine) % 256; };
  const KrBuffer frame = MakeFrame(KrPixel::Mono8, kWidth, kHeight, kWidth, 8, sample, 3);
  Expected expected;
  for (std::uint32_t y = 0; y < kHeight; ++y)
    for (std::uint32_t x = 0; x < kWidth; ++x)
      expected.Add(sample(x, y));
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

  ASSERT_EQ(histogram.GetChannels().size(), 1u);
  EXPECT_EQ(histogram.GetChannels()[0].component, 'Y');
  EXPECT_EQ(histogram.GetLowestValue(), 0);
  EXPECT_EQ(histogram.GetHighestValue(), 255);
  ExpectChannel(histogram.GetChannels()[0], expected, 0);
}

TEST(Histogram, PackedDeepFormats_CountRawValues) {
  struct Format {
    KrPixelType type;
    unsigned bits;
    unsigned bitsEach;
  };
  for (const Format& format :
       {Format{KrPixel::Mono10p, 10, 10}, Format{KrPixel::Mono12p, 12, 12}, Format{KrPixel::Mono14p, 14, 14},
        Format{KrPixel::Mono12, 12, 16}, Format{KrPixel::Mono16, 16, 16}}) {
    const auto sample = [&](auto aSample, auto aLine) { return GetStep(aSample, aLine) * 97 % (1u << format.bits); };
    const KrBuffer frame = MakeFrame(format.type, kWidth, kHeight, kWidth, format.bitsEach, sample, 1);
    Expected expected;
    for (std::uint32_t y = 0; y < kHeight; ++y)
      for (std::uint32_t x = 0; x < kWidth; ++x)
        expected.Add(sample(x, y));
    Histogram histogram;

    ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

    EXPECT_EQ(histogram.GetHighestValue(), (1 << format.bits) - 1);
    ExpectChannel(histogram.GetChannels()[0], expected, 0);
  }
}

TEST(Histogram, Bayer_CountsEachColourOfThePatternApart) {
  const auto sample = [](auto aSample, auto aLine) { return GetStep(aSample, aLine) % 4096; };
  const KrBuffer frame = MakeFrame(KrPixel::BayerGB12p, kWidth, kHeight, kWidth, 12, sample);
  std::map<char, Expected> expected;
  for (std::uint32_t y = 0; y < kHeight; ++y)
    for (std::uint32_t x = 0; x < kWidth; ++x)
      expected[y % 2 == 0 ? (x % 2 == 0 ? 'G' : 'B') : (x % 2 == 0 ? 'R' : 'G')].Add(sample(x, y));
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

  ASSERT_EQ(histogram.GetChannels().size(), 3u);
  std::string order;
  for (const HistogramChannel& channel : histogram.GetChannels()) {
    order += channel.component;
    ExpectChannel(channel, expected[channel.component], 0);
  }
  EXPECT_EQ(order, "RGB");
}

TEST(Histogram, ColoursInAnyOrder_AreNamedRightAndAlphaIsLeftOut) {
  for (const auto& [type, order] :
       {std::pair{KrPixel::RGB8, std::string("RGB")}, std::pair{KrPixel::BGR8, std::string("BGR")},
        std::pair{KrPixel::BGRa8, std::string("BGRA")}}) {
    const auto samples = static_cast<unsigned>(order.size());
    const auto sample = [](auto aSample, auto aLine) { return GetStep(aSample, aLine) % 256; };
    const KrBuffer frame = MakeFrame(type, kWidth, kHeight, samples * kWidth, 8, sample);
    std::map<char, Expected> expected;
    for (std::uint32_t y = 0; y < kHeight; ++y)
      for (std::uint32_t i = 0; i < samples * kWidth; ++i)
        expected[order[i % samples]].Add(sample(i, y));
    Histogram histogram;

    ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

    ASSERT_EQ(histogram.GetChannels().size(), 3u) << order;
    for (const HistogramChannel& channel : histogram.GetChannels())
      ExpectChannel(channel, expected[channel.component], 0);
  }
}

TEST(Histogram, LumaAndChroma_CountTheLumaOfEachPixelOnce) {
  struct Format {
    KrPixelType type;
    std::string group;
    unsigned pixels;
  };
  for (const Format& format : {Format{KrPixel::YUV422_8, "YUYV", 2}, Format{KrPixel::YUV422_8_UYVY, "UYVY", 2},
                               Format{KrPixel::YUV8_UYV, "UYV", 1}, Format{KrPixel::YUV411_8_UYYVYY, "UYYVYY", 4}}) {
    const auto samples = static_cast<unsigned>(format.group.size());
    const unsigned samplesOfLine = 36 / format.pixels * samples;
    const auto sample = [](auto aSample, auto aLine) { return GetStep(aSample, aLine) % 256; };
    const KrBuffer frame = MakeFrame(format.type, 36, kHeight, samplesOfLine, 8, sample);
    Expected expected;
    for (std::uint32_t y = 0; y < kHeight; ++y)
      for (std::uint32_t i = 0; i < samplesOfLine; ++i)
        if (format.group[i % samples] == 'Y')
          expected.Add(sample(i, y));
    Histogram histogram;

    ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

    ASSERT_EQ(histogram.GetChannels().size(), 1u) << format.group;
    EXPECT_EQ(histogram.GetChannels()[0].pixels, 36u * kHeight);
    ExpectChannel(histogram.GetChannels()[0], expected, 0);
  }
}

TEST(Histogram, SignedValues_CountFromTheLeastOneOn) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(4, 1, KrPixel::Mono8s).IsOK());
  const std::int8_t values[] = {-128, -1, 0, 127};
  for (int i = 0; i < 4; ++i)
    frame.GetDataPointer()[i] = static_cast<std::uint8_t>(values[i]);
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

  const HistogramChannel& channel = histogram.GetChannels()[0];
  EXPECT_EQ(histogram.GetLowestValue(), -128);
  EXPECT_EQ(channel.lowest, -128);
  EXPECT_EQ(channel.highest, 127);
  EXPECT_DOUBLE_EQ(channel.mean, -0.5);
}

TEST(Histogram, ClippedPixels_AreCountedAtBothEnds) {
  const KrBuffer frame = MakeFrame(KrPixel::Mono10p, 40, 10, 40, 10, [](auto aSample, auto aLine) {
    return aLine == 0 ? 0u : aSample < 10 ? 1023u : 500u;
  });
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

  const HistogramChannel& channel = histogram.GetChannels()[0];
  EXPECT_EQ(channel.clippedLow, 40u);
  EXPECT_EQ(channel.clippedHigh, 90u);
  EXPECT_DOUBLE_EQ(channel.GetPercent(channel.clippedLow), 10.0);
  EXPECT_DOUBLE_EQ(channel.GetPercent(channel.clippedHigh), 22.5);
}

TEST(Histogram, BitsAboveTheSignificantOnes_DoNotCount) {
  const KrBuffer frame = MakeFrame(KrPixel::Mono10, 8, 1, 8, 16, [](auto, auto) { return 0xFC05u; });
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

  EXPECT_EQ(histogram.GetChannels()[0].counts[5], 8u);
}

TEST(Histogram, OneColourAlone_IsNamedAfterIt) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(4, 4, KrPixel::G8).IsOK());
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*frame.GetImage()).IsOK());

  EXPECT_EQ(histogram.GetChannels()[0].component, 'G');
}

TEST(Histogram, FormatsThatCannotBeCounted_AreRefusedAndNothingIsLeft) {
  KrBuffer mono;
  ASSERT_TRUE(mono.GetImage()->Alloc(4, 4, KrPixel::Mono8).IsOK());
  for (const KrPixelType type :
       {KrPixel::Coord3D_C32f, KrPixel::Mono1p, KrPixel::Mono32, KrPixel::BiColorRGBG8, KrPixel::RGB565p}) {
    KrBuffer frame;
    ASSERT_TRUE(frame.GetImage()->Alloc(4, 4, type).IsOK());
    Histogram histogram;
    ASSERT_TRUE(histogram.Count(*mono.GetImage()).IsOK());

    EXPECT_EQ(histogram.Count(*frame.GetImage()).GetCode(), KrResult::Code::NotSupported) << type;

    EXPECT_TRUE(histogram.GetChannels().empty());
  }
}

TEST(GatherColumns, FewerColumnsThanValues_HaveTheGreatestCountOfTheirs) {
  EXPECT_THAT(GatherColumns({1, 5, 2, 2, 0, 9}, 3), ElementsAre(5, 2, 9));
  EXPECT_THAT(GatherColumns({1, 5, 2, 2, 7}, 2), ElementsAre(5, 7));
}

TEST(GatherColumns, MoreColumnsThanValues_RepeatThem) {
  EXPECT_THAT(GatherColumns({1, 5}, 4), ElementsAre(1, 1, 5, 5));
}

TEST(GatherColumns, Nothing_GivesNothing) {
  EXPECT_TRUE(GatherColumns({}, 4).empty());
  EXPECT_TRUE(GatherColumns({1, 2}, 0).empty());
}
