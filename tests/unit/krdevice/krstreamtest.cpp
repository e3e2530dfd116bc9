#include "krdevice/krstream.h"

#include "fakelink.h"
#include "krdevice/krdevicegev.h"

#include <cstring>
#include <future>
#include <gmock/gmock.h>

namespace {

constexpr std::uint32_t kGenerousLimitMs = 60000;

class KrStreamTest : public testing::Test {
protected:
  FakeBufferSource mSource;
  KrDeviceGEV mDevice{std::make_unique<FakeLink>(&mSource), MakeDeviceFields()};
};

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
  const auto wait = [&] {
    KrBuffer* buffer = nullptr;
    return stream.Retrieve(buffer, kGenerousLimitMs);
  };
  std::future<KrResult> first = std::async(std::launch::async, wait);
  std::future<KrResult> second = std::async(std::launch::async, wait);
  mSource.WaitForWaiters(2);

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
  std::future<KrResult> waiting = std::async(std::launch::async, [&] {
    KrBuffer* buffer = nullptr;
    return stream.Retrieve(buffer, kGenerousLimitMs);
  });
  mSource.WaitForWaiters(1);

  mSource.Lose();

  EXPECT_TRUE(waiting.get() == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(stream.Release(lent).IsOK());
  stream.Stop();
  EXPECT_FALSE(stream.IsRunning());
}

TEST_F(KrStreamTest, GetStatistics_RunningAndStopped_AreTheSources) {
  KrStream stream(mDevice);
  mSource.statistics = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(stream.GetStatistics().received, 0u) << "never started";
  ASSERT_TRUE(stream.Start().IsOK());
  const KrStreamStatistics running = stream.GetStatistics();

  stream.Stop();
  mSource.statistics = {};

  for (const KrStreamStatistics& counted : {running, stream.GetStatistics()}) {
    EXPECT_EQ(counted.received, 1u);
    EXPECT_EQ(counted.incomplete, 2u);
    EXPECT_EQ(counted.missingPackets, 3u);
    EXPECT_EQ(counted.resentPackets, 4u);
    EXPECT_EQ(counted.discarded, 5u);
    EXPECT_EQ(counted.bytes, 6u);
  }
}
