#include "panels/lineprofile.h"

#include "graphframes.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <limits>

using krviewer::CutoutRequest;
using krviewer::FrameSnapshots;
using krviewer::LineProfile;
using krviewer::ProfileChannel;
using krviewer::ProfilePoint;
using krviewer::ReducePoints;
using krviewer::Snapshot;

namespace {

using Kind = CutoutRequest::Kind;

Snapshot TakeSnapshot(const KrBuffer& aFrame, const CutoutRequest& aRequest) {
  FrameSnapshots snapshots;
  Snapshot snapshot;
  snapshots.Ask(aRequest);
  snapshots.OnFrame(aFrame, 0);
  EXPECT_TRUE(snapshots.Take(snapshot));
  return snapshot;
}

std::uint32_t GetStep(std::uint32_t aSample, std::uint32_t aLine) {
  return (aSample * 31 + aLine * 57) % 1024;
}

} // namespace

TEST(LineProfile, LineOfPackedMono_HasItsRawValues) {
  const KrBuffer frame = MakeFrame(KrPixel::Mono10p, 45, 9, 45, 10, GetStep, 2);
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(frame, {Kind::Line, 7})).IsOK());

  ASSERT_EQ(profile.GetChannels().size(), 1u);
  const ProfileChannel& channel = profile.GetChannels()[0];
  EXPECT_EQ(channel.component, 'Y');
  EXPECT_EQ(profile.GetLength(), 45u);
  ASSERT_EQ(channel.points.size(), 45u);
  for (std::uint32_t x = 0; x < 45; ++x) {
    EXPECT_EQ(channel.points[x].position, x);
    EXPECT_EQ(channel.points[x].value, GetStep(x, 7));
  }
  EXPECT_EQ(profile.GetFormatRange()->high, 1023);
}

TEST(LineProfile, ColumnOfBayer_HasTheColoursOfItsLines) {
  const KrBuffer frame = MakeFrame(KrPixel::BayerRG10p, 45, 9, 45, 10, GetStep);
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(frame, {Kind::Column, 44})).IsOK());

  ASSERT_EQ(profile.GetChannels().size(), 2u);
  EXPECT_EQ(profile.GetChannels()[0].component, 'R');
  EXPECT_EQ(profile.GetChannels()[1].component, 'G');
  EXPECT_EQ(profile.GetLength(), 9u);
  for (std::uint32_t y = 0; y < 9; ++y) {
    const ProfilePoint& point = profile.GetChannels()[y % 2].points[y / 2];
    EXPECT_EQ(point.position, y);
    EXPECT_EQ(point.value, GetStep(44, y));
  }
}

TEST(LineProfile, LineOfColours_HasEachInTheUsualOrder) {
  const KrBuffer frame =
      MakeFrame(KrPixel::BGR8, 20, 4, 60, 8, [](auto aSample, auto) { return aSample % 3 * 80 + aSample / 3; });
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(frame, {Kind::Line, 0})).IsOK());

  std::string order;
  for (const ProfileChannel& channel : profile.GetChannels())
    order += channel.component;
  EXPECT_EQ(order, "RGB");
  EXPECT_EQ(profile.GetChannels()[0].points[5].value, 165);
  EXPECT_EQ(profile.GetChannels()[2].points[5].value, 5);
}

TEST(LineProfile, NumberBeyondTheFrame_IsTheLastLine) {
  const KrBuffer frame = MakeFrame(KrPixel::Mono8, 20, 5, 20, 8, [](auto, auto aLine) { return aLine; });
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(frame, {Kind::Line, std::uint64_t{1} << 40})).IsOK());

  EXPECT_EQ(profile.GetIndex(), 4u);
  EXPECT_EQ(profile.GetChannels()[0].points[0].value, 4);
}

TEST(LineProfile, Sharpness_IsTheMeanStepOfNeighboursOfOneColour) {
  const KrBuffer mono = MakeFrame(KrPixel::Mono8, 5, 2, 5, 8, [](auto aSample, auto) { return aSample % 2 * 100; });
  const KrBuffer bayer =
      MakeFrame(KrPixel::BayerRG8, 6, 2, 6, 8, [](auto aSample, auto) { return aSample % 2 == 0 ? 200 : aSample * 5; });
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(mono, {Kind::Line, 0})).IsOK());
  EXPECT_DOUBLE_EQ(profile.GetSharpness(), 100);

  // Red does not change; green rises by 10 in two pixels.
  ASSERT_TRUE(profile.Read(TakeSnapshot(bayer, {Kind::Line, 0})).IsOK());
  EXPECT_DOUBLE_EQ(profile.GetSharpness(), 2.5);
}

TEST(LineProfile, Sharpness_GrowsAsAnEdgeBecomesSteeper) {
  const auto edge = [](double aWidth) {
    return MakeFrame(KrPixel::Mono8, 64, 2, 64, 8, [aWidth](auto aSample, auto) {
      // Stripes, as one edge alone rises by the same however wide it is.
      return static_cast<std::uint32_t>(127.5 + 127 * std::tanh(8 / aWidth * std::sin(aSample * 0.7)) / 1.0);
    });
  };
  double last = 0;
  for (const double width : {64.0, 16.0, 4.0}) {
    LineProfile profile;
    ASSERT_TRUE(profile.Read(TakeSnapshot(edge(width), {Kind::Line, 1})).IsOK());
    EXPECT_GT(profile.GetSharpness(), last);
    last = profile.GetSharpness();
  }
}

TEST(LineProfile, OnePixel_HasNoSharpness) {
  const KrBuffer frame = MakeFrame(KrPixel::Mono8, 1, 1, 1, 8, [](auto, auto) { return 9; });
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(frame, {Kind::Column, 0})).IsOK());

  EXPECT_EQ(profile.GetSharpness(), 0.0);
}

TEST(LineProfile, FloatingPoint_HasTheRangeOfItsFiniteValues) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(4, 1, KrPixel::Coord3D_C32f).IsOK());
  const float values[] = {1.5F, std::numeric_limits<float>::quiet_NaN(), -2.0F, std::numeric_limits<float>::infinity()};
  std::memcpy(frame.GetDataPointer(), values, sizeof values);
  LineProfile profile;

  ASSERT_TRUE(profile.Read(TakeSnapshot(frame, {Kind::Line, 0})).IsOK());

  EXPECT_FALSE(profile.GetFormatRange());
  ASSERT_TRUE(profile.GetValueRange());
  EXPECT_EQ(profile.GetValueRange()->low, -2.0);
  EXPECT_EQ(profile.GetValueRange()->high, 1.5);
  EXPECT_EQ(profile.GetSharpness(), 0.0);
}

TEST(LineProfile, SnapshotWithoutPixels_GivesItsReasonAndNothingIsLeft) {
  const KrBuffer good = MakeFrame(KrPixel::Mono8, 4, 4, 4, 8, [](auto, auto) { return 1; });
  KrBuffer bad;
  ASSERT_TRUE(bad.GetImage()->Alloc(4, 4, KrPixel::BiColorRGBG8).IsOK());
  LineProfile profile;
  ASSERT_TRUE(profile.Read(TakeSnapshot(good, {Kind::Line, 0})).IsOK());

  EXPECT_EQ(profile.Read(TakeSnapshot(bad, {Kind::Line, 0})).GetCode(), KrResult::Code::NotSupported);
  EXPECT_TRUE(profile.GetChannels().empty());
  EXPECT_EQ(profile.Read(TakeSnapshot(good, {Kind::Sample})).GetCode(), KrResult::Code::InvalidInput);
}

TEST(ReducePoints, FewPoints_StayAsTheyAre) {
  EXPECT_EQ(ReducePoints({{0, 1}, {1, 2}, {2, 3}}, 3, 2).size(), 3u);
}

TEST(ReducePoints, ManyPoints_KeepTheExtremesOfEachPartInOrder) {
  std::vector<ProfilePoint> points;
  for (std::uint32_t i = 0; i < 1000; ++i)
    points.push_back({i, i == 137 ? 99.0 : i == 138 ? -99.0 : 1.0});

  const std::vector<ProfilePoint> reduced = ReducePoints(points, 1000, 10);

  ASSERT_LE(reduced.size(), 20u);
  for (std::size_t i = 1; i < reduced.size(); ++i)
    EXPECT_LT(reduced[i - 1].position, reduced[i].position);
  const auto has = [&](std::uint32_t aPosition, double aValue) {
    return std::ranges::any_of(
        reduced, [&](const ProfilePoint& aPoint) { return aPoint.position == aPosition && aPoint.value == aValue; });
  };
  EXPECT_TRUE(has(137, 99.0));
  EXPECT_TRUE(has(138, -99.0));
}

TEST(ReducePoints, WhatIsNoNumber_IsLeftOut) {
  EXPECT_EQ(ReducePoints({{0, 1}, {1, std::nan("")}, {2, 3}}, 3, 5).size(), 2u);
}
