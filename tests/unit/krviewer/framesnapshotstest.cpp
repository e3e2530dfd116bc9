#include "panels/framesnapshots.h"

#include "await.h"
#include "graphframes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using krviewer::CutoutRequest;
using krviewer::FrameSnapshots;
using krviewer::Snapshot;

namespace {

KrBuffer MakeGrey(std::uint8_t aValue, std::uint64_t aFrameID) {
  KrBuffer frame = MakeFrame(KrPixel::Mono8, 16, 4, 16, 8, [aValue](auto, auto) { return aValue; });
  frame.SetFrameID(aFrameID);
  return frame;
}

} // namespace

TEST(FrameSnapshots, WithoutBeingAsked_CopiesNothing) {
  FrameSnapshots snapshots;
  Snapshot snapshot;

  snapshots.OnFrame(MakeGrey(1, 1), 0);

  EXPECT_FALSE(snapshots.Take(snapshot));
  EXPECT_EQ(snapshots.GetCopied(), 0u);
}

TEST(FrameSnapshots, AskedOnce_CopiesTheNextFrameAlone) {
  FrameSnapshots snapshots;
  Snapshot snapshot;
  snapshots.Ask({CutoutRequest::Kind::Line, 3});

  snapshots.OnFrame(MakeGrey(7, 21), 0);
  snapshots.OnFrame(MakeGrey(8, 22), 1);

  ASSERT_TRUE(snapshots.Take(snapshot));
  EXPECT_EQ(snapshot.frameID, 21u);
  EXPECT_EQ(snapshot.width, 16u);
  EXPECT_EQ(snapshot.height, 4u);
  EXPECT_EQ(snapshot.request.index, 3u);
  EXPECT_EQ(snapshot.pixels.GetDataPointer()[0], 7);
  EXPECT_TRUE(snapshot.isWhole);
  EXPECT_EQ(snapshots.GetCopied(), 1u);
  EXPECT_FALSE(snapshots.Take(snapshot));
}

TEST(FrameSnapshots, AskedNothingMore_CopiesNothing) {
  FrameSnapshots snapshots;
  snapshots.Ask({});
  snapshots.AskNothing();

  snapshots.OnFrame(MakeGrey(7, 21), 0);

  EXPECT_EQ(snapshots.GetCopied(), 0u);
}

TEST(FrameSnapshots, FramesThatComeSlowly_AreCopiedWholeAndFastOnesInPart) {
  constexpr std::uint64_t kSecondNs = 1'000'000'000;
  FrameSnapshots snapshots;
  Snapshot snapshot;
  const auto copyLine = [&](std::uint64_t aTimeNs) {
    snapshots.Ask({CutoutRequest::Kind::Line, 0});
    snapshots.OnFrame(MakeGrey(7, 21), aTimeNs);
    EXPECT_TRUE(snapshots.Take(snapshot));
    return snapshot.cutout.lines;
  };

  EXPECT_EQ(copyLine(kSecondNs), 4u);
  EXPECT_EQ(copyLine(kSecondNs + 1000), 2u);
  EXPECT_EQ(copyLine(2 * kSecondNs), 4u);
}

TEST(FrameSnapshots, FramesOnAThreadOfTheirOwn_ComeWholeAndNewerEachTime) {
  constexpr int kWanted = 100;
  FrameSnapshots snapshots;
  Snapshot snapshot;
  std::jthread camera([&](const std::stop_token& aStop) {
    for (std::uint64_t id = 1; !aStop.stop_requested(); ++id)
      snapshots.OnFrame(MakeGrey(static_cast<std::uint8_t>(id), id), id);
  });

  std::uint64_t last = 0;
  const auto take = [&] {
    snapshots.Ask({});
    return snapshots.Take(snapshot);
  };
  for (int taken = 0; taken < kWanted; ++taken) {
    ASSERT_TRUE(krtest::Await(take)) << taken;
    EXPECT_GT(snapshot.frameID, last);
    last = snapshot.frameID;
    const std::uint8_t* const pixels = snapshot.pixels.GetDataPointer();
    EXPECT_TRUE(std::all_of(pixels, pixels + 64, [&](std::uint8_t aPixel) {
      return aPixel == static_cast<std::uint8_t>(snapshot.frameID);
    })) << snapshot.frameID;
  }
}

TEST(FrameSnapshots, FrameWithoutAnImage_IsPassedBy) {
  FrameSnapshots snapshots;
  Snapshot snapshot;
  snapshots.Ask({});

  snapshots.OnFrame(KrBuffer(KrPayloadType::RawData), 0);
  snapshots.OnFrame(KrBuffer(), 1);
  EXPECT_FALSE(snapshots.Take(snapshot));
  snapshots.OnFrame(MakeGrey(9, 3), 2);

  EXPECT_TRUE(snapshots.Take(snapshot));
  EXPECT_EQ(snapshot.frameID, 3u);
}

TEST(FrameSnapshots, IncompleteFrame_IsCopiedAndSaysSo) {
  FrameSnapshots snapshots;
  Snapshot snapshot;
  KrBuffer frame = MakeGrey(9, 3);
  frame.SetStatus(KrBufferStatus::Incomplete);
  snapshots.Ask({});

  snapshots.OnFrame(frame, 0);

  ASSERT_TRUE(snapshots.Take(snapshot));
  EXPECT_FALSE(snapshot.isWhole);
}

TEST(FrameSnapshots, FormatThatCannotBeRead_GivesTheReason) {
  FrameSnapshots snapshots;
  Snapshot snapshot;
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(16, 16, KrPixel::BiColorRGBG8).IsOK());
  snapshots.Ask({});

  snapshots.OnFrame(frame, 0);

  ASSERT_TRUE(snapshots.Take(snapshot));
  EXPECT_EQ(snapshot.result.GetCode(), KrResult::Code::NotSupported);
}
