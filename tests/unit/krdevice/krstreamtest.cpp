#include "krdevice/krstream.h"

#include "await.h"
#include "streamfixture.h"

#include <atomic>
#include <cstring>
#include <future>
#include <gmock/gmock.h>
#include <thread>

namespace {

class KrStreamTest : public StreamTest {};

} // namespace

TEST_F(KrStreamTest, Start_ValidPayload_QueuesBuffersOfItsSize) {
  KrStream stream(mDevice, 4);

  ASSERT_TRUE(stream.Start().IsOK());

  EXPECT_TRUE(stream.IsRunning());
  EXPECT_EQ(mSource.CountHeldBuffers(), 4u);
  EXPECT_EQ(mSource.GetSmallestBuffer(), 64u);
}

TEST_F(KrStreamTest, Construction_BufferCountOutOfRange_IsMovedToTheNearerEnd) {
  KrStream few(mDevice, 0);
  ASSERT_TRUE(few.Start().IsOK());
  EXPECT_EQ(mSource.CountHeldBuffers(), 2u);
  few.Stop();
  KrStream many(mDevice, 5000);

  ASSERT_TRUE(many.Start().IsOK());

  EXPECT_EQ(mSource.CountHeldBuffers(), 1024u);
}

TEST_F(KrStreamTest, Start_PayloadThatCannotBe_IsRefusedWithATextAndLeavesNothingBehind) {
  const std::pair<std::uint64_t, KrResult::Code> rows[] = {
      {0, KrResult::Code::ProtocolError},
      {(std::uint64_t{4} << 30) + 1, KrResult::Code::NotSupported},
  };
  for (const auto& [payloadBytes, code] : rows) {
    SCOPED_TRACE(payloadBytes);
    mSource.payloadBytes = payloadBytes;
    KrStream stream(mDevice);

    const KrResult result = stream.Start();

    EXPECT_TRUE(result == code);
    EXPECT_FALSE(result.GetDescription().IsEmpty());
    EXPECT_FALSE(stream.IsRunning());
    EXPECT_EQ(mSource.CountHeldBuffers(), 0u);
  }
}

TEST_F(KrStreamTest, Start_MoreThanTheMemory_IsSystemError) {
  mSource.payloadBytes = std::uint64_t{4} << 30;
  KrStream stream(mDevice, 1024);

  EXPECT_TRUE(stream.Start() == KrResult::Code::SystemError);
}

TEST_F(KrStreamTest, Start_ChannelThatTheDeviceLacks_IsNotSupported) {
  KrStream stream(mDevice, 4, 1);

  EXPECT_TRUE(stream.Start() == KrResult::Code::NotSupported);
}

TEST_F(KrStreamTest, Start_WhileRunning_IsWrongStateAndStreamGoesOn) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());

  EXPECT_TRUE(stream.Start() == KrResult::Code::WrongState);

  EXPECT_TRUE(stream.IsRunning());
  EXPECT_EQ(mSource.CountHeldBuffers(), 4u);
}

TEST_F(KrStreamTest, Start_SecondStreamOfAChannel_IsBusyUntilTheFirstStops) {
  KrStream first(mDevice, 4);
  KrStream second(mDevice, 4);
  ASSERT_TRUE(first.Start().IsOK());

  EXPECT_TRUE(second.Start() == KrResult::Code::Busy);

  EXPECT_EQ(mSource.CountHeldBuffers(), 4u);
  first.Stop();
  EXPECT_TRUE(second.Start().IsOK());
}

TEST_F(KrStreamTest, Start_SourceRefuses_GivesUpItsBuffersAndCanBeRepeated) {
  mSource.startResult = {KrResult::Code::AccessDenied, "monitor"};
  KrStream stream(mDevice);

  EXPECT_TRUE(stream.Start() == KrResult::Code::AccessDenied);

  EXPECT_EQ(mSource.CountHeldBuffers(), 0u);
  EXPECT_FALSE(stream.IsRunning());
  mSource.startResult = {};
  EXPECT_TRUE(stream.Start().IsOK());
}

TEST_F(KrStreamTest, Start_PayloadSizeCannotBeRead_GivesThatResultAndCanBeRepeated) {
  mSource.payloadResult = {KrResult::Code::TimeLimitExceeded, "no answer"};
  KrStream stream(mDevice);

  EXPECT_TRUE(stream.Start() == KrResult::Code::TimeLimitExceeded);

  EXPECT_FALSE(stream.IsRunning());
  mSource.payloadResult = {};
  EXPECT_TRUE(stream.Start().IsOK());
}

TEST_F(KrStreamTest, Start_DeviceLost_FailsAndLeavesTheChannelFree) {
  mSource.Lose();
  KrStream first(mDevice);
  KrStream second(mDevice);

  EXPECT_FALSE(first.Start().IsOK());

  EXPECT_FALSE(first.IsRunning());
  EXPECT_FALSE(second.Start() == KrResult::Code::Busy);
}

TEST_F(KrStreamTest, Start_WhileABufferOfTheFormerRunIsLent_ThatBufferIsForeignAfterwards) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));
  KrBuffer* former = nullptr;
  ASSERT_TRUE(stream.Retrieve(former, kGenerousLimitMs).IsOK());
  stream.Stop();

  ASSERT_TRUE(stream.Start().IsOK());

  EXPECT_EQ(mSource.CountHeldBuffers(), 4u);
  EXPECT_TRUE(stream.Release(former) == KrResult::Code::InvalidInput);
  EXPECT_EQ(mSource.CountHeldBuffers(), 4u);
}

TEST_F(KrStreamTest, Retrieve_OtherPayloadsThanImages_PassUnchanged) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  for (const KrPayloadType type : {KrPayloadType::ChunkData, KrPayloadType::Jpeg, KrPayloadType::GenDC}) {
    ASSERT_TRUE(mSource.Push(1, KrBufferStatus::Complete, type));
    KrBuffer* buffer = nullptr;

    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

    EXPECT_EQ(buffer->GetPayloadType(), type);
    EXPECT_EQ(buffer->GetImage(), nullptr);
    EXPECT_TRUE(stream.Release(buffer).IsOK());
  }
}

TEST_F(KrStreamTest, Retrieve_SourceGivesWhatItDidNotHold_IsProtocolError) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));
  KrBuffer* lent = nullptr;
  ASSERT_TRUE(stream.Retrieve(lent, kGenerousLimitMs).IsOK());
  KrBuffer foreign;
  KrBuffer* buffer = nullptr;

  mSource.PushForeign(&foreign);
  EXPECT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs) == KrResult::Code::ProtocolError);
  EXPECT_EQ(buffer, nullptr);
  mSource.PushForeign(lent);
  EXPECT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs) == KrResult::Code::ProtocolError);
  EXPECT_EQ(buffer, nullptr);
}

TEST_F(KrStreamTest, Retrieve_WhileAnotherThreadWaits_EndsAtItsOwnLimit) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  std::future<KrResult> waiting = std::async(std::launch::async, [&] { return WaitForFrame(stream); });
  mSource.WaitForWaiters(1);
  KrBuffer* buffer = nullptr;

  EXPECT_TRUE(stream.Retrieve(buffer, 0) == KrResult::Code::TimeLimitExceeded);
  EXPECT_TRUE(stream.Retrieve(buffer, 1) == KrResult::Code::TimeLimitExceeded);

  ASSERT_TRUE(mSource.Push(1));
  EXPECT_TRUE(waiting.get().IsOK());
}

TEST_F(KrStreamTest, Retrieve_OnSeveralThreads_EachFrameComesOnceAndNoneCountsAsMissing) {
  constexpr std::uint64_t kFrames = 2000;
  KrStream stream(mDevice, 8);
  ASSERT_TRUE(stream.Start().IsOK());
  std::atomic<std::uint64_t> sumOfIDs = 0;
  std::atomic<std::uint64_t> frames = 0;
  std::thread consumers[4];
  for (std::thread& consumer : consumers) {
    consumer = std::thread([&] {
      KrBuffer* buffer = nullptr;
      while (stream.Retrieve(buffer, kGenerousLimitMs).IsOK()) {
        sumOfIDs += buffer->GetFrameID();
        EXPECT_TRUE(stream.Release(buffer).IsOK());
        ++frames;
      }
    });
  }

  for (std::uint64_t id = 1; id <= kFrames; ++id)
    EXPECT_TRUE(krtest::Await([&] { return mSource.Push(id); }));
  EXPECT_TRUE(krtest::Await([&] { return frames >= kFrames; }));
  stream.Stop();

  for (std::thread& consumer : consumers)
    consumer.join();
  EXPECT_EQ(frames, kFrames);
  EXPECT_EQ(sumOfIDs, kFrames * (kFrames + 1) / 2);
  EXPECT_EQ(stream.GetStatistics().missingFrames, 0u);
}

TEST_F(KrStreamTest, Cancel_WhileACallWaits_ItReturnsAbortedAndTheStreamGoesOn) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  std::future<KrResult> waiting = std::async(std::launch::async, [&] { return WaitForFrame(stream); });
  mSource.WaitForWaiters(1);

  stream.Cancel();

  EXPECT_TRUE(waiting.get() == KrResult::Code::Aborted);
  EXPECT_TRUE(stream.IsRunning());
  ASSERT_TRUE(mSource.Push(1));
  EXPECT_TRUE(WaitForFrame(stream).IsOK());
}

TEST_F(KrStreamTest, Cancel_WhileSeveralThreadsWait_EndsThemAll) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  std::atomic<int> cancelled = 0;
  std::thread waiters[3];
  for (std::thread& waiter : waiters) {
    waiter = std::thread([&] {
      EXPECT_TRUE(WaitForFrame(stream) == KrResult::Code::Aborted);
      ++cancelled;
    });
  }

  // Some of the waits may only have begun after a Cancel.
  while (cancelled < 3) {
    stream.Cancel();
    std::this_thread::yield();
  }

  for (std::thread& waiter : waiters)
    waiter.join();
  EXPECT_TRUE(stream.IsRunning());
}

TEST_F(KrStreamTest, Cancel_BeforeACallBegins_DoesNotEndIt) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  stream.Cancel();
  std::future<KrResult> waiting = std::async(std::launch::async, [&] { return WaitForFrame(stream); });
  mSource.WaitForWaiters(1);

  ASSERT_TRUE(mSource.Push(1));

  EXPECT_TRUE(waiting.get().IsOK());
}

TEST_F(KrStreamTest, Cancel_StreamThatDoesNotRun_DoesNothing) {
  KrStream stream(mDevice, 4);

  stream.Cancel();
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));

  EXPECT_TRUE(WaitForFrame(stream).IsOK());
}

TEST_F(KrStreamTest, Retrieve_SeveralFrames_ComeInOrder) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  for (std::uint64_t id = 1; id <= 10; ++id) {
    ASSERT_TRUE(mSource.Push(id)) << "a released buffer was not queued again";
    KrBuffer* buffer = nullptr;

    ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

    EXPECT_EQ(buffer->GetFrameID(), id);
    EXPECT_TRUE(stream.Release(buffer).IsOK());
  }
}

TEST_F(KrStreamTest, Retrieve_NoFrame_IsTimeLimitExceeded) {
  KrStream stream(mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer unused;
  KrBuffer* buffer = &unused;

  EXPECT_TRUE(stream.Retrieve(buffer, 0) == KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(buffer, nullptr);
}

TEST_F(KrStreamTest, Retrieve_NotStartedOrStopped_IsAborted) {
  KrStream stream(mDevice);
  KrBuffer* buffer = nullptr;

  EXPECT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs) == KrResult::Code::Aborted);
  ASSERT_TRUE(stream.Start().IsOK());
  stream.Stop();
  EXPECT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs) == KrResult::Code::Aborted);
}

TEST_F(KrStreamTest, Stop_WhileOthersWait_TheyReturnAborted) {
  KrStream stream(mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  const auto wait = [&] { return WaitForFrame(stream); };
  std::future<KrResult> first = std::async(std::launch::async, wait);
  std::future<KrResult> second = std::async(std::launch::async, wait);
  mSource.WaitForWaiters(1);

  stream.Stop();

  EXPECT_TRUE(first.get() == KrResult::Code::Aborted);
  EXPECT_TRUE(second.get() == KrResult::Code::Aborted);
  EXPECT_FALSE(stream.IsRunning());
}

TEST_F(KrStreamTest, Stop_WithLentBuffer_ItStaysReadableAndReleaseSucceeds) {
  KrStream stream(mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(7));
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());
  std::memset(buffer->GetDataPointer(), 0x5A, buffer->GetSize());

  stream.Stop();

  EXPECT_EQ(buffer->GetFrameID(), 7u);
  EXPECT_EQ(buffer->GetDataPointer()[buffer->GetSize() - 1], 0x5A);
  EXPECT_TRUE(stream.Release(buffer).IsOK());
  EXPECT_EQ(mSource.CountHeldBuffers(), 0u);
}

TEST_F(KrStreamTest, Stop_Twice_DoesNothing) {
  KrStream stream(mDevice);
  ASSERT_TRUE(stream.Start().IsOK());

  stream.Stop();
  stream.Stop();

  EXPECT_FALSE(stream.IsRunning());
}

TEST_F(KrStreamTest, Stop_WhileOthersRetrieveAndRelease_LeavesNoBufferWithTheSource) {
  KrStream stream(mDevice, 8);
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(stream.Start().IsOK());
    std::thread consumers[2];
    for (std::thread& consumer : consumers) {
      consumer = std::thread([&] {
        KrBuffer* buffer = nullptr;
        while (stream.Retrieve(buffer, kGenerousLimitMs).IsOK())
          EXPECT_TRUE(stream.Release(buffer).IsOK());
      });
    }
    mSource.WaitForWaiters(1);
    for (std::uint64_t id = 0; id < 8; ++id)
      mSource.Push(id);

    stream.Stop();

    for (std::thread& consumer : consumers)
      consumer.join();
    EXPECT_EQ(mSource.CountHeldBuffers(), 0u);
  }
}

TEST_F(KrStreamTest, Release_WhatWasNotLent_IsInvalidInput) {
  KrStream stream(mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));
  KrBuffer foreign;
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  EXPECT_TRUE(stream.Release(nullptr) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(stream.Release(&foreign) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(stream.Release(buffer).IsOK());
  EXPECT_TRUE(stream.Release(buffer) == KrResult::Code::InvalidInput) << "released twice";
}

TEST_F(KrStreamTest, DeviceLost_WaitingRetrieve_IsConnectionLostAndReleaseSucceeds) {
  KrStream stream(mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));
  KrBuffer* lent = nullptr;
  ASSERT_TRUE(stream.Retrieve(lent, kGenerousLimitMs).IsOK());
  std::future<KrResult> waiting = std::async(std::launch::async, [&] { return WaitForFrame(stream); });
  mSource.WaitForWaiters(1);

  mSource.Lose();

  EXPECT_TRUE(waiting.get() == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(stream.Release(lent).IsOK());
  stream.Stop();
  EXPECT_FALSE(stream.IsRunning());
}
