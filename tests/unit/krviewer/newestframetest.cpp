#include "acquisition/newestframe.h"

#include "recordings.h"

#include <gtest/gtest.h>

using namespace krviewer;

TEST(NewestFrame, BeforeAnyFrame_IsNone) {
  EXPECT_EQ(NewestFrame().Get(), nullptr);
}

TEST(NewestFrame, IsTheWholeFrameThatCameLast) {
  NewestFrame newest;
  newest.OnFrame(MakeNumberedFrame(1), 0);
  newest.OnFrame(MakeNumberedFrame(2), 0);
  KrBuffer torn = MakeNumberedFrame(3);
  torn.SetStatus(KrBufferStatus::Incomplete);

  newest.OnFrame(torn, 0);

  EXPECT_EQ(newest.Get()->GetFrameID(), 2U);
  EXPECT_EQ(newest.Get()->GetTimestampNs(), 2000U);
  EXPECT_EQ(newest.Get()->GetImage()->GetWidth(), kFrameWidth);
}

TEST(NewestFrame, FrameThatSomebodyHas_StaysAsItIs) {
  NewestFrame newest;
  newest.OnFrame(MakeNumberedFrame(1), 0);
  const std::shared_ptr<const KrBuffer> held = newest.Get();

  for (std::uint64_t frameID = 2; frameID < 6; ++frameID)
    newest.OnFrame(MakeNumberedFrame(frameID), 0);

  EXPECT_EQ(held->GetFrameID(), 1U);
  EXPECT_EQ(held->GetImage()->GetDataPointer()[0], 1);
  EXPECT_EQ(newest.Get()->GetImage()->GetDataPointer()[0], 5);
}

TEST(NewestFrame, FramesOfOtherSizes_AreWhole) {
  NewestFrame newest;
  for (const std::uint32_t width : {16U, 32U, 16U, 8U}) {
    newest.OnFrame(MakeNumberedFrame(width, width), 0);

    EXPECT_EQ(newest.Get()->GetImage()->GetWidth(), width);
    EXPECT_EQ(newest.Get()->GetImage()->GetImageSize(), width * kFrameHeight);
  }
}

TEST(NewestFrame, FrameThatIsNoImage_LeavesTheOneBefore) {
  NewestFrame newest;
  newest.OnFrame(MakeNumberedFrame(1), 0);
  KrBuffer bytes(KrPayloadType::RawData);
  ASSERT_TRUE(bytes.Alloc(10).IsOK());
  bytes.SetStatus(KrBufferStatus::Complete);

  newest.OnFrame(bytes, 0);

  EXPECT_EQ(newest.Get()->GetFrameID(), 1U);
}
