// Graphs of what cameras of the simulated lab really send: their ramp is known, so that a plain loop says what each
// pixel is.

#include "labfixture.h"
#include "panels/histogram.h"
#include "panels/lineprofile.h"

#include "krdevice/krstream.h"

#include <gmock/gmock.h>

#include <map>

using krviewer::CutoutRequest;
using krviewer::FrameSnapshots;
using krviewer::Histogram;
using krviewer::HistogramChannel;
using krviewer::LineProfile;
using krviewer::ProfileChannel;
using krviewer::Snapshot;

namespace {

struct GraphCase {
  const char* camera;
  const char* format;
  unsigned bits;
  const char* pattern; ///< The colours of two by two pixels; of colour formats those of a pixel.
};

constexpr GraphCase kCases[] = {
    {kMonoMAC, "Mono8", 8, "YYYY"},         {kMonoMAC, "Mono10p", 10, "YYYY"},
    {kMonoMAC, "Mono12Packed", 12, "YYYY"}, {kMonoMAC, "Mono16", 16, "YYYY"},
    {kColourMAC, "BayerRG8", 8, "RGGB"},    {kColourMAC, "BayerGB10Packed", 10, "GBRG"},
    {kColourMAC, "BayerBG12p", 12, "BGGR"}, {kColourMAC, "RGB8", 8, "RGB"},
    {kColourMAC, "BGR10p", 10, "BGR"},      {kColourMAC, "RGB12_Planar", 12, "RGB"},
};

/// What the camera's ramp has at a place, as the lab's description says.
std::uint32_t GetRamp(const GraphCase& aCase, char aColour, std::uint64_t aX, std::uint64_t aY, std::uint64_t aFrame) {
  const std::uint64_t shift = aColour == 'G' ? 85 : aColour == 'B' ? 170 : 0;
  const std::uint64_t value = (aX + aY + aFrame + shift) % 256;
  return static_cast<std::uint32_t>(value * ((1u << aCase.bits) - 1) / 255);
}

/// The colours that the pixel at a place has.
std::string GetColours(const GraphCase& aCase, std::uint64_t aX, std::uint64_t aY) {
  const std::string pattern = aCase.pattern;
  return pattern.size() == 4 ? std::string(1, pattern[aY % 2 * 2 + aX % 2]) : pattern;
}

class FrameGraphs : public LabTest, public testing::WithParamInterface<GraphCase> {
protected:
  /// A part of a whole frame of the camera in its format.
  void Take(const CutoutRequest& aRequest, Snapshot& aSnapshot) {
    std::unique_ptr<KrDevice> device;
    ASSERT_TRUE(Open(GetParam().camera, device).IsOK());
    KrGenParameterArray* parameters = nullptr;
    ASSERT_TRUE(device->GetParameters(parameters).IsOK());
    ASSERT_TRUE(parameters->GetEnum("PixelFormat")->SetEntry(GetParam().format).IsOK());
    KrStream stream(*device);
    ASSERT_TRUE(stream.Start().IsOK());
    FrameSnapshots snapshots;
    snapshots.Ask(aRequest);
    // The first frame is copied as a whole, which is another test's business.
    for (std::uint64_t time = 0; time < 2; ++time) {
      KrBuffer* frame = nullptr;
      ASSERT_TRUE(stream.Retrieve(frame, kGenerousLimitMs).IsOK());
      ASSERT_EQ(frame->GetStatus(), KrBufferStatus::Complete);
      snapshots.Ask(aRequest);
      snapshots.OnFrame(*frame, time);
      ASSERT_TRUE(stream.Release(frame).IsOK());
    }
    ASSERT_TRUE(snapshots.Take(aSnapshot));
    ASSERT_TRUE(aSnapshot.result.IsOK()) << aSnapshot.result.GetDescription().CStr();
  }
};

} // namespace

TEST_P(FrameGraphs, Histogram_CountsTheRampOfTheSampledLines) {
  Snapshot snapshot;
  ASSERT_NO_FATAL_FAILURE(Take({}, snapshot));
  std::map<char, std::map<std::uint32_t, std::uint32_t>> expected;
  for (std::uint32_t line = 0; line < snapshot.cutout.lines; ++line)
    for (std::uint32_t x = 0; x < snapshot.cutout.columns; ++x) {
      const std::uint32_t y = snapshot.cutout.GetImageLine(line);
      for (const char colour : GetColours(GetParam(), x, y))
        ++expected[colour][GetRamp(GetParam(), colour, x, y, snapshot.frameID)];
    }
  Histogram histogram;

  ASSERT_TRUE(histogram.Count(*snapshot.pixels.GetImage()).IsOK());

  EXPECT_EQ(histogram.GetChannels().size(), expected.size());
  for (const HistogramChannel& channel : histogram.GetChannels()) {
    std::map<std::uint32_t, std::uint32_t> counted;
    for (std::uint32_t value = 0; value < channel.counts.size(); ++value)
      if (channel.counts[value] > 0)
        counted[value] = channel.counts[value];
    EXPECT_EQ(counted, expected[channel.component]) << channel.component;
  }
}

TEST_P(FrameGraphs, LineProfile_HasTheRampAlongLinesAndColumns) {
  for (const CutoutRequest& request :
       {CutoutRequest{CutoutRequest::Kind::Line, 101}, CutoutRequest{CutoutRequest::Kind::Column, 1003}}) {
    Snapshot snapshot;
    ASSERT_NO_FATAL_FAILURE(Take(request, snapshot));
    LineProfile profile;

    ASSERT_TRUE(profile.Read(snapshot).IsOK());

    const bool isColumn = request.kind == CutoutRequest::Kind::Column;
    std::size_t points = 0;
    for (const ProfileChannel& channel : profile.GetChannels())
      for (const auto& [position, value] : channel.points) {
        const std::uint64_t x = isColumn ? request.index : position;
        const std::uint64_t y = isColumn ? position : request.index;
        ASSERT_THAT(GetColours(GetParam(), x, y), testing::Contains(channel.component));
        ASSERT_EQ(value, GetRamp(GetParam(), channel.component, x, y, snapshot.frameID)) << x << ", " << y;
        ++points;
      }
    EXPECT_EQ(points, profile.GetLength() * GetColours(GetParam(), 0, 0).size());
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, FrameGraphs, testing::ValuesIn(kCases),
                         [](const auto& aInfo) { return std::string(aInfo.param.format); });
