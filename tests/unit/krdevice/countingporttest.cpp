#include "countingport.h"
#include "krgenicam/krgenmemoryport.h"
#include "recordingport.h"
#include "timedport.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kTimeoutMs = 1000;

class CountingPortTest : public testing::Test {
protected:
  KrResult Read() {
    std::uint32_t value = 0;
    return mPort.Read(0, &value, sizeof(value), kTimeoutMs, {});
  }
  KrResult Write() {
    const std::uint64_t value = 1;
    return mPort.Write(0, &value, sizeof(value), kTimeoutMs, {});
  }
  void Fail(KrResult::Code aCode) {
    mRecords.SetFault([aCode](const RegisterAccessRecord&) { return KrResult(aCode); });
  }

  KrGenMemoryPort mMemory;
  RecordingPort mRecords{mMemory};
  std::uint64_t mNowNs = 0;
  std::uint64_t mStepNs = 100; // Each look at the clock takes so long.
  krdevice::CountingPort mPort{mRecords, [this] { return mNowNs += mStepNs; }};
};

// Notes the limit of each access.
class LimitPort : public IKrRegisterPort {
public:
  KrResult Read(std::uint64_t, void*, std::size_t, std::uint32_t aTimeoutMs, const std::stop_token&) override {
    timeoutMs = aTimeoutMs;
    return {};
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t aTimeoutMs, const std::stop_token&) override {
    timeoutMs = aTimeoutMs;
    return {};
  }
  std::uint32_t timeoutMs = 0;
};

} // namespace

TEST_F(CountingPortTest, Accesses_ThatSucceed_AreCountedWithTheirBytesAndTimes) {
  EXPECT_TRUE(Read().IsOK());
  mStepNs = 700;
  EXPECT_TRUE(Write().IsOK());
  mStepNs = 200;
  EXPECT_TRUE(Read().IsOK());

  const krdevice::AccessCounts counts = mPort.GetCounts();
  EXPECT_EQ(counts.reads, 2u);
  EXPECT_EQ(counts.writes, 1u);
  EXPECT_EQ(counts.succeeded, 3u);
  EXPECT_EQ(counts.bytes, 16u);
  EXPECT_EQ(counts.longestNs, 700u);
  EXPECT_EQ(counts.succeededNs, 1000u);
}

TEST_F(CountingPortTest, Accesses_ThatFail_AreCountedByTheirKind) {
  Fail(KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Read(), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Write(), KrResult::Code::TimeLimitExceeded);
  Fail(KrResult::Code::ProtocolError);
  EXPECT_EQ(Read(), KrResult::Code::ProtocolError);
  Fail(KrResult::Code::Aborted);
  EXPECT_EQ(Read(), KrResult::Code::Aborted);

  const krdevice::AccessCounts counts = mPort.GetCounts();
  EXPECT_EQ(counts.timeouts, 2u);
  EXPECT_EQ(counts.failures, 1u) << "one that was cancelled is nobody's fault";
  EXPECT_EQ(counts.succeeded, 0u);
  EXPECT_EQ(counts.bytes, 0u);
  EXPECT_EQ(counts.longestNs, 0u);
}

TEST(TimedPortTest, Accesses_WhateverTheirCallerSays_TakeTheLimitThatIsSet) {
  LimitPort limits;
  krdevice::TimedPort port(limits, 50);
  std::uint8_t byte = 0;

  EXPECT_TRUE(port.Read(0, &byte, 1, 9999, {}).IsOK());
  EXPECT_EQ(limits.timeoutMs, 50u);
  port.SetTimeoutMs(70);
  EXPECT_TRUE(port.Write(0, &byte, 1, 9999, {}).IsOK());

  EXPECT_EQ(limits.timeoutMs, 70u);
  EXPECT_EQ(port.GetTimeoutMs(), 70u);
}
