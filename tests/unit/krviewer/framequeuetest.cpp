#include "recording/framequeue.h"

#include <gtest/gtest.h>

#include <utility>

using krviewer::FrameQueue;
using krviewer::RecordedFrame;

namespace {

constexpr std::uint64_t kManyFrames = 1000;

} // namespace

TEST(FrameQueue, Frames_ComeOutInTheOrderInWhichTheyWentIn) {
  FrameQueue queue;
  queue.Reset(100, kManyFrames);
  for (const std::uint64_t run : {1, 2, 3}) {
    std::unique_ptr<RecordedFrame> room = queue.TakeRoom(10);
    ASSERT_NE(room, nullptr);
    room->run = run;
    queue.Push(std::move(room));
  }

  for (const std::uint64_t run : {1U, 2U, 3U})
    EXPECT_EQ(queue.Pop()->run, run);
  EXPECT_EQ(queue.Pop(), nullptr);
}

TEST(FrameQueue, Room_IsWhatTheBytesAllow) {
  FrameQueue queue;
  queue.Reset(100, kManyFrames);

  std::unique_ptr<RecordedFrame> first = queue.TakeRoom(60);
  EXPECT_EQ(queue.TakeRoom(41), nullptr);
  std::unique_ptr<RecordedFrame> second = queue.TakeRoom(40);
  EXPECT_EQ(queue.TakeRoom(1), nullptr);

  EXPECT_NE(second, nullptr);
  EXPECT_EQ(queue.GetFrames(), 2U);
  EXPECT_EQ(queue.GetBytes(), 100U);
}

TEST(FrameQueue, Room_IsWhatTheNumberOfFramesAllows) {
  FrameQueue queue;
  queue.Reset(1000, 2);

  const auto first = queue.TakeRoom(1);
  const auto second = queue.TakeRoom(1);

  EXPECT_NE(second, nullptr);
  EXPECT_EQ(queue.TakeRoom(1), nullptr);
}

TEST(FrameQueue, FrameLargerThanAllMemory_HasItWhileItIsAlone) {
  FrameQueue queue;
  queue.Reset(100, kManyFrames);

  std::unique_ptr<RecordedFrame> large = queue.TakeRoom(1000);

  ASSERT_NE(large, nullptr);
  EXPECT_EQ(large->frame.GetSize(), 1000U);
  EXPECT_EQ(queue.TakeRoom(1), nullptr);
  queue.GiveBack(std::move(large));
  EXPECT_NE(queue.TakeRoom(1), nullptr);
}

TEST(FrameQueue, FrameBeingWritten_TakesItsRoomUntilItIsGivenBack) {
  FrameQueue queue;
  queue.Reset(10, kManyFrames);
  queue.Push(queue.TakeRoom(10));

  std::unique_ptr<RecordedFrame> written = queue.Pop();

  EXPECT_TRUE(queue.IsEmpty());
  EXPECT_EQ(queue.TakeRoom(10), nullptr);
  queue.GiveBack(std::move(written));
  EXPECT_NE(queue.TakeRoom(10), nullptr);
}

TEST(FrameQueue, MemoryGivenBack_IsUsedAgain) {
  FrameQueue queue;
  queue.Reset(100, kManyFrames);
  std::unique_ptr<RecordedFrame> frame = queue.TakeRoom(10);
  const std::uint8_t* const memory = frame->frame.GetDataPointer();
  queue.GiveBack(std::move(frame));

  EXPECT_EQ(queue.TakeRoom(10)->frame.GetDataPointer(), memory);
}

TEST(FrameQueue, FramesOfAnotherSize_HaveMemoryOfTheirOwnSize) {
  FrameQueue queue;
  queue.Reset(100, kManyFrames);
  queue.GiveBack(queue.TakeRoom(90));

  const std::unique_ptr<RecordedFrame> other = queue.TakeRoom(95);

  ASSERT_NE(other, nullptr);
  EXPECT_EQ(other->frame.GetSize(), 95U);
}

TEST(FrameQueue, Cleared_SaysHowManyFramesWaited) {
  FrameQueue queue;
  queue.Reset(100, kManyFrames);
  queue.Push(queue.TakeRoom(10));
  queue.Push(queue.TakeRoom(10));
  std::unique_ptr<RecordedFrame> written = queue.Pop();

  EXPECT_EQ(queue.Clear(), 1U);

  EXPECT_EQ(queue.GetFrames(), 1U);
  queue.GiveBack(std::move(written));
  EXPECT_EQ(queue.GetBytes(), 0U);
}
