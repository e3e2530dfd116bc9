// The parameters of a stream, as KrStream gives them, over a source whose figures the test decides.

#include "await.h"
#include "krgenicam/krgenparameterarray.h"
#include "parametertext.h"
#include "streamfixture.h"

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

// Waits for word of a parameter.
class UpdateSink : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter*) override {
    const std::lock_guard lock(mMutex);
    ++mUpdates;
    mChanged.notify_all();
  }
  bool Wait() {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [this] { return mUpdates > 0; });
  }

private:
  std::mutex mMutex; // Guards mUpdates.
  std::condition_variable mChanged;
  int mUpdates = 0;
};

class StreamParametersTest : public StreamTest {
protected:
  void SetUp() override {
    const KrResult got = mStream.GetParameters(mArray);
    ASSERT_TRUE(got.IsOK()) << got.GetDescription().CStr();
  }

  KrStream mStream{mDevice, 6};
  KrGenParameterArray* mArray = nullptr;
};

} // namespace

TEST_F(StreamParametersTest, GetParameters_SeveralCalls_GiveOneArrayOfWhichAllCanBeRead) {
  KrGenParameterArray* again = nullptr;

  ASSERT_TRUE(mStream.GetParameters(again).IsOK());

  EXPECT_EQ(again, mArray);
  ExpectAllReadable(*mArray);
  EXPECT_EQ(ReadText(*mArray, "StreamID"), KrString("00:11:22:33:44:55/0"));
  EXPECT_EQ(ReadText(*mArray, "StreamType"), KrString("GigEVision"));
}

TEST_F(StreamParametersTest, GetParameters_ChannelThatTheDeviceLacks_IsNotSupported) {
  KrStream other(mDevice, 6, 1);
  KrGenParameterArray* array = nullptr;

  EXPECT_EQ(other.GetParameters(array), KrResult::Code::NotSupported);
  EXPECT_EQ(array, nullptr);
}

TEST_F(StreamParametersTest, Counters_RunningAndStopped_AgreeWithTheStatistics) {
  ASSERT_TRUE(mStream.Start().IsOK());
  mSource.statistics = {10, 2, 3, 4, 5, 6};
  mStream.CountShown();
  const auto expectAll = [this] {
    const KrStreamStatistics counted = mStream.GetStatistics();
    EXPECT_EQ(ReadNumber(*mArray, "StreamStartedFrameCount"), 17);
    EXPECT_EQ(ReadNumber(*mArray, "StreamDeliveredFrameCount"), 12);
    EXPECT_EQ(ReadNumber(*mArray, "StreamLostFrameCount"), static_cast<std::int64_t>(counted.discarded));
    EXPECT_EQ(ReadNumber(*mArray, "StreamIncompleteFrameCount"), static_cast<std::int64_t>(counted.incomplete));
    EXPECT_EQ(ReadNumber(*mArray, "StreamMissingFrameCount"), static_cast<std::int64_t>(counted.missingFrames));
    EXPECT_EQ(ReadNumber(*mArray, "StreamShownFrameCount"), static_cast<std::int64_t>(counted.shown));
    EXPECT_EQ(ReadNumber(*mArray, "StreamMissingPacketCount"), static_cast<std::int64_t>(counted.missingPackets));
    EXPECT_EQ(ReadNumber(*mArray, "StreamResentPacketCount"), static_cast<std::int64_t>(counted.resentPackets));
    EXPECT_EQ(ReadNumber(*mArray, "StreamDeliveredByteCount"), static_cast<std::int64_t>(counted.bytes));
    EXPECT_EQ(counted.bytes, 6u);
  };

  expectAll();
  mStream.Stop();
  expectAll();
}

TEST_F(StreamParametersTest, Reset_WhileCounting_BeginsHereAndLeavesTheStatistics) {
  ASSERT_TRUE(mStream.Start().IsOK());
  mSource.statistics.received = 10;
  ASSERT_TRUE(mArray->GetCommand("StreamStatisticsReset")->Execute().IsOK());
  mSource.statistics.received = 13;

  EXPECT_EQ(ReadNumber(*mArray, "StreamDeliveredFrameCount"), 3);
  EXPECT_EQ(mStream.GetStatistics().received, 13u);
}

TEST_F(StreamParametersTest, Start_AfterAReset_CountsFromZeroAgain) {
  ASSERT_TRUE(mStream.Start().IsOK());
  mSource.statistics.received = 10;
  ASSERT_TRUE(mArray->GetCommand("StreamStatisticsReset")->Execute().IsOK());
  mStream.Stop();

  mSource.statistics.received = 11;
  ASSERT_TRUE(mStream.Start().IsOK());

  EXPECT_EQ(ReadNumber(*mArray, "StreamDeliveredFrameCount"), 11);
}

TEST_F(StreamParametersTest, BufferCount_SetWhileStopped_IsThatOfTheNextStart) {
  EXPECT_EQ(ReadNumber(*mArray, "StreamBufferCountManual"), 6);
  EXPECT_EQ(ReadNumber(*mArray, "StreamAnnouncedBufferCount"), 0);

  ASSERT_TRUE(SetText(*mArray, "StreamBufferCountManual", "9").IsOK());
  ASSERT_TRUE(mStream.Start().IsOK());

  EXPECT_EQ(mSource.CountHeldBuffers(), 9u);
  EXPECT_EQ(ReadNumber(*mArray, "StreamAnnouncedBufferCount"), 9);
  EXPECT_EQ(ReadNumber(*mArray, "StreamBufferSize"), 64);
}

TEST_F(StreamParametersTest, BufferCount_OutOfRange_IsRefused) {
  for (const char* const count : {"1", "1025", "-3"})
    EXPECT_EQ(SetText(*mArray, "StreamBufferCountManual", count), KrResult::Code::OutOfRange) << count;
}

TEST_F(StreamParametersTest, BufferCount_WhileTheStreamRuns_IsLockedAndFreeAgainAfterwards) {
  EXPECT_TRUE(IsWritable(*mArray, "StreamBufferCountManual"));
  ASSERT_TRUE(mStream.Start().IsOK());

  EXPECT_FALSE(IsWritable(*mArray, "StreamBufferCountManual"));
  EXPECT_EQ(SetText(*mArray, "StreamBufferCountManual", "9"), KrResult::Code::AccessDenied);
  mStream.Stop();

  EXPECT_TRUE(IsWritable(*mArray, "StreamBufferCountManual"));
}

TEST_F(StreamParametersTest, LentBufferCount_BufferTakenAndGivenBack_FollowsIt) {
  ASSERT_TRUE(mStream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(mStream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  EXPECT_EQ(ReadNumber(*mArray, "StreamLentBufferCount"), 1);
  ASSERT_TRUE(mStream.Release(buffer).IsOK());

  EXPECT_EQ(ReadNumber(*mArray, "StreamLentBufferCount"), 0);
}

TEST_F(StreamParametersTest, StartAndStop_SinkOfALockedParameter_HearsOfBoth) {
  KrGenParameter* const count = mArray->Get("StreamBufferCountManual");
  ASSERT_TRUE(count->IsWritable());

  for (const bool starts : {true, false}) {
    UpdateSink sink;
    ASSERT_TRUE(count->RegisterEventSink(&sink).IsOK());
    if (starts)
      ASSERT_TRUE(mStream.Start().IsOK());
    else
      mStream.Stop();
    EXPECT_TRUE(sink.Wait()) << (starts ? "start" : "stop");
    EXPECT_TRUE(count->UnregisterEventSink(&sink).IsOK());
  }
}

TEST_F(StreamParametersTest, DeviceLost_WhileTheStreamRuns_LeavesCountersReadable) {
  ASSERT_TRUE(mStream.Start().IsOK());
  mSource.statistics.received = 4;

  mSource.Lose();

  ExpectAllReadable(*mArray);
  EXPECT_EQ(ReadNumber(*mArray, "StreamDeliveredFrameCount"), 4);
}

TEST_F(StreamParametersTest, ReadAndStartAndStop_BesideEachOther_EndAndAgree) {
  std::thread reader([this] {
    for (int i = 0; i < 300; ++i) {
      EXPECT_GE(ReadNumber(*mArray, "StreamInputBufferCount"), 0);
      EXPECT_GE(ReadNumber(*mArray, "StreamDeliveredFrameCount"), 0);
      mArray->InvalidateCache();
    }
  });
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(mStream.Start().IsOK());
    mStream.Stop();
  }
  reader.join();

  EXPECT_EQ(ReadText(*mArray, "StreamIsGrabbing"), KrString("0"));
}
