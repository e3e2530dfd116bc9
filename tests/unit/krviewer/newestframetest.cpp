#include "acquisition/newestframe.h"

#include "recordings.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

using namespace krviewer;

TEST(NewestFrame, BeforeAnyFrame_IsNone) {
  EXPECT_EQ(NewestFrame().Get(), nullptr);
}

TEST(NewestFrame, IsTheWholeFrameThatCameLast) {
  NewestFrame newest;
  newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(1)));
  newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(2)));
  KrBuffer torn = MakeNumberedFrame(3);
  torn.SetStatus(KrBufferStatus::Incomplete);

  newest.Take(std::make_shared<const KrBuffer>(std::move(torn)));

  EXPECT_EQ(newest.Get()->GetFrameID(), 2U);
  EXPECT_EQ(newest.Get()->GetTimestampNs(), 2000U);
  EXPECT_EQ(newest.Get()->GetImage()->GetWidth(), kFrameWidth);
}

TEST(NewestFrame, FrameThatSomebodyHas_StaysAsItIs) {
  NewestFrame newest;
  newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(1)));
  const std::shared_ptr<const KrBuffer> held = newest.Get();

  for (std::uint64_t frameID = 2; frameID < 6; ++frameID)
    newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(frameID)));

  EXPECT_EQ(held->GetFrameID(), 1U);
  EXPECT_EQ(held->GetImage()->GetDataPointer()[0], 1);
  EXPECT_EQ(newest.Get()->GetImage()->GetDataPointer()[0], 5);
}

TEST(NewestFrame, NobodyAsks_NothingIsCopied) {
  NewestFrame newest;
  const auto first = std::make_shared<const KrBuffer>(MakeNumberedFrame(1));

  newest.Take(first);
  EXPECT_EQ(first.use_count(), 2); // Shared as it is.
  EXPECT_TRUE(newest.HasFrame());
  newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(2)));

  EXPECT_EQ(first.use_count(), 1);
}

TEST(NewestFrame, FrameWhoseMemoryGoes_LeavesACopy) {
  NewestFrame newest;
  const auto frame = std::make_shared<const KrBuffer>(MakeNumberedFrame(7));
  newest.Take(frame);
  const std::shared_ptr<const KrBuffer> asked = newest.Get();

  newest.Detach();

  EXPECT_EQ(frame.use_count(), 1);
  for (const std::shared_ptr<const KrBuffer>& copy : {asked, newest.Get()}) {
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, frame);
    EXPECT_EQ(copy->GetFrameID(), 7U);
    EXPECT_EQ(copy->GetImage()->GetDataPointer()[0], 7);
  }
}

TEST(NewestFrame, FramesOfOtherSizes_AreWhole) {
  NewestFrame newest;
  for (const std::uint32_t width : {16U, 32U, 16U, 8U}) {
    newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(width, width)));

    EXPECT_EQ(newest.Get()->GetImage()->GetWidth(), width);
    EXPECT_EQ(newest.Get()->GetImage()->GetImageSize(), width * kFrameHeight);
  }
}

TEST(NewestFrame, FrameThatIsNoImage_LeavesTheOneBefore) {
  NewestFrame newest;
  newest.Take(std::make_shared<const KrBuffer>(MakeNumberedFrame(1)));
  KrBuffer bytes(KrPayloadType::RawData);
  ASSERT_TRUE(bytes.Alloc(10).IsOK());
  bytes.SetStatus(KrBufferStatus::Complete);

  newest.Take(std::make_shared<const KrBuffer>(std::move(bytes)));

  EXPECT_EQ(newest.Get()->GetFrameID(), 1U);
}
