#include "executecommand.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <csignal>

namespace krtool {
namespace {

using testing::HasSubstr;

// A device is done when it puts 0 into the register; this one does so after some questions, or never.
class ExecuteNamed : public testing::Test {
protected:
  KrResult Execute(const char* aName, std::uint32_t aTimeoutMs = 600'000) {
    return ExecuteCommand(*mCamera.array, aName, mStop, aTimeoutMs);
  }
  void BeDoneAfter(int aQuestions) {
    mCamera.port.SetFault([this, aQuestions](const RegisterAccessRecord& aRecord) {
      const std::uint8_t zero[4] = {};
      mQuestions += aRecord.isWrite ? 0 : 1;
      return mQuestions == aQuestions ? mCamera.memory.Write(0, zero, 4, 1000) : KrResult();
    });
  }

  DescribedCamera mCamera{R"(
    <Category Name="Root"><pFeature>Reset</pFeature></Category>
    <Command Name="Reset"><pValue>ResetReg</pValue><CommandValue>1</CommandValue></Command>
    <IntReg Name="ResetReg"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
      <Endianess>LittleEndian</Endianess></IntReg>
    <Command Name="Away"><pIsAvailable>Zero</pIsAvailable><pValue>ResetReg</pValue><CommandValue>1</CommandValue></Command>
    <Integer Name="Zero"><Value>0</Value></Integer>)"};
  krapps::StopSignal mStop;
  int mQuestions = 0;
};

TEST_F(ExecuteNamed, Command_IsWrittenAndItsEndAwaited) {
  BeDoneAfter(3);

  const KrResult result = Execute("Reset");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mQuestions, 3);
}

TEST_F(ExecuteNamed, CommandWithoutEnd_RunsIntoTheTimeLimit) {
  EXPECT_EQ(Execute("Reset", 1), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(mCamera.Peek(0, 1), std::vector<std::uint8_t>{1});
}

TEST_F(ExecuteNamed, Stop_EndsTheWaiting) {
  mCamera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    if (aRecord.isWrite)
      std::raise(SIGINT);
    return KrResult();
  });

  EXPECT_EQ(Execute("Reset"), KrResult::Code::Aborted);
}

TEST_F(ExecuteNamed, WhatIsNoCommand_IsRefused) {
  const KrResult result = Execute("Zero");

  EXPECT_EQ(result, KrResult::Code::InvalidInput);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("Integer"));
}

TEST_F(ExecuteNamed, UnknownOrUnavailableOne_FailsWithTheReason) {
  EXPECT_THAT(Execute("Rest").GetDescription().ToUtf8(), HasSubstr("Reset?"));
  EXPECT_THAT(Execute("Away").GetDescription().ToUtf8(), HasSubstr("Zero"));
}

} // namespace
} // namespace krtool
