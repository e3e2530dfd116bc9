#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stop_token>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kNodes = MakeRegister("Temperature", 0x100, "<PollingTime>1000</PollingTime>") +
                           MakeRegister("Slow", 0x104, "<PollingTime>5000</PollingTime>") +
                           MakeRegister("Still", 0x108) + MakeRegister("BlockReg", 0x10C) +
                           MakeRegister("AutoReg", 0x110) +
                           R"(
<IntReg Name="Blocked"><pBlockPolling>BlockReg</pBlockPolling><Address>0x114</Address><Length>4</Length>
  <AccessMode>RO</AccessMode><pPort>Device</pPort><PollingTime>1000</PollingTime><Endianess>LittleEndian</Endianess></IntReg>
<Enumeration Name="Auto"><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
  <EnumEntry Name="Once"><Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>
  <pValue>AutoReg</pValue><PollingTime>1000</PollingTime></Enumeration>
<Register Name="Block"><Address>0x200</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
  <PollingTime>7000</PollingTime></Register>
<Command Name="Start"><pValue>StartReg</pValue><CommandValue>1</CommandValue><PollingTime>1000</PollingTime></Command>
)" + MakeRegister("StartReg", 0x118);

class Polling : public testing::Test {
protected:
  // What its entry is has to be known before it is known that it need not be polled.
  Polling() { EXPECT_EQ(Read(mCamera.Enum("Auto"), &KrGenEnum::GetValue), 0); }
  std::int64_t Get(const char* aName) { return Read(mCamera.Integer(aName), &KrGenInteger::GetValue); }
  std::vector<std::uint64_t> PollAndTakeAddresses() {
    (void)mCamera.port.TakeRecords(); // What came before is of no interest.
    EXPECT_TRUE(mCamera.array->Poll().IsOK());
    std::vector<std::uint64_t> addresses;
    for (const RegisterAccessRecord& record : mCamera.port.TakeRecords())
      addresses.push_back(record.address);
    return addresses;
  }

  std::atomic<std::uint64_t> mNowMs = 50000;
  ChangingCamera mCamera{kNodes, {.getTimeMs = [this] { return mNowMs.load(); }}};
};

} // namespace

TEST_F(Polling, Poll_BeforeAnyTimeHasPassed_ReadsNothing) {
  EXPECT_THAT(PollAndTakeAddresses(), IsEmpty());
}

TEST_F(Polling, Poll_AsTimesPass_ReadsEachInItsOwnTime) {
  ASSERT_TRUE(mCamera.Integer("BlockReg").SetValue(1).IsOK());

  mNowMs += 999;
  EXPECT_THAT(PollAndTakeAddresses(), IsEmpty());
  mNowMs += 1;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100));
  EXPECT_THAT(PollAndTakeAddresses(), IsEmpty());
  mNowMs += 4000;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100, 0x104));
}

TEST_F(Polling, Poll_OfWhatTheDeviceChanged_HasTheNewValueAndTellsItsSink) {
  RecordingSink sink;
  mCamera.Watch("Temperature", sink);
  EXPECT_EQ(Get("Still"), 0);
  mCamera.Poke(0x100, {40, 0, 0, 0});
  mCamera.Poke(0x108, {41, 0, 0, 0});
  mNowMs += 1000;

  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Temperature"));
  EXPECT_EQ(Get("Temperature"), 40);
  EXPECT_EQ(Get("Still"), 0);
}

TEST_F(Polling, Poll_OfARegisterThatTheDeviceChanged_TellsItsSinkOnce) {
  RecordingSink sink;
  mCamera.Watch("Block", sink);
  mCamera.Poke(0x202, {5});
  mNowMs += 7000;

  EXPECT_THAT(PollAndTakeAddresses(), testing::Contains(0x200));
  mCamera.AwaitNotifications();
  mNowMs += 7000;
  EXPECT_THAT(PollAndTakeAddresses(), testing::Contains(0x200));
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Block"));
}

TEST_F(Polling, Poll_BeforeASinkKnowsAnything_CountsAsNoChange) {
  Occasion isAtWork, mayGoOn;
  RecordingSink blocker([&](KrGenParameter&) {
    isAtWork.Happen();
    mayGoOn.Await();
  });
  RecordingSink sink;
  mCamera.Watch("Still", blocker);
  ASSERT_TRUE(mCamera.Integer("Still").SetValue(1).IsOK());
  isAtWork.Await();

  sink.Listen(mCamera.Integer("Temperature"));
  mNowMs += 1000;
  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mayGoOn.Happen();
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), IsEmpty());
}

TEST_F(Polling, Poll_OfWhatWasReadButIsUnknownToASink_TellsItOnceWhetherItHasChangedOrNot) {
  RecordingSink sink;
  sink.Listen(mCamera.Integer("Temperature"));
  EXPECT_EQ(Get("Temperature"), 0);

  mNowMs += 1000;
  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mCamera.AwaitNotifications();
  EXPECT_THAT(sink.TakeNames(), ElementsAre("Temperature"));
  mNowMs += 1000;
  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), IsEmpty());
}

TEST_F(Polling, Poll_OfWhatHasNotChanged_TellsNobody) {
  RecordingSink sink;
  mCamera.Watch("Temperature", sink);
  mNowMs += 1000;

  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), IsEmpty());
}

TEST_F(Polling, Poll_WhileItIsBlocked_WaitsForTheEndOfThat) {
  ASSERT_TRUE(mCamera.Integer("BlockReg").SetValue(1).IsOK());
  mNowMs += 1000;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100));

  ASSERT_TRUE(mCamera.Integer("BlockReg").SetValue(0).IsOK());

  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x114));
}

TEST_F(Polling, Poll_OfAnEnumeration_ReadsItWhileItsEntryClearsItself) {
  RecordingSink sink;
  ASSERT_TRUE(mCamera.Integer("BlockReg").SetValue(1).IsOK());
  ASSERT_TRUE(mCamera.Enum("Auto").SetEntry("Once").IsOK());
  mCamera.Watch("Auto", sink);
  mCamera.Poke(0x110, {0, 0, 0, 0});
  mNowMs += 1000;

  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Auto"));
  EXPECT_EQ(Read(mCamera.Enum("Auto"), &KrGenEnum::GetValue), 0);
  mNowMs += 1000;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100));
}

TEST_F(Polling, Poll_OfACommand_AsksTheDeviceWhileItIsUnderWay) {
  ASSERT_TRUE(mCamera.Integer("BlockReg").SetValue(1).IsOK());
  mNowMs += 1000;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100));
  ASSERT_TRUE(mCamera.Command("Start").Execute().IsOK());
  mNowMs += 1000;

  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100, 0x118));
  mCamera.Poke(0x118, {0, 0, 0, 0});
  mNowMs += 1000;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100, 0x118));
  mNowMs += 1000;
  EXPECT_THAT(PollAndTakeAddresses(), ElementsAre(0x100));
}

TEST_F(Polling, Poll_WithAFailure_TriesAllAndReturnsTheFirst) {
  mNowMs += 5000;
  mCamera.port.SetFault([](const RegisterAccessRecord& aAccess) {
    return aAccess.address == 0x100 ? KrResult(KrResult::Code::TimeLimitExceeded) : KrResult();
  });

  const KrResult result = mCamera.array->Poll();

  mCamera.port.SetFault({});
  EXPECT_TRUE(result == KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(mCamera.port.TakeRecords(), testing::Contains(RegisterAccessRecord{false, 0x104, 4}));
}

TEST_F(Polling, Poll_ThatIsStopped_AsksForNoFurtherParameterAndTheNextDoes) {
  mNowMs += 5000;
  std::stop_source stop;
  mCamera.port.SetFault([&](const RegisterAccessRecord&) {
    stop.request_stop();
    return KrResult();
  });
  (void)mCamera.port.TakeRecords(); // What came before is of no interest.

  const KrResult result = mCamera.array->Poll(stop.get_token());

  mCamera.port.SetFault({});
  EXPECT_TRUE(result == KrResult::Code::Aborted);
  EXPECT_THAT(mCamera.port.TakeRecords(), ElementsAre(RegisterAccessRecord{false, 0x100, 4}));
  EXPECT_THAT(PollAndTakeAddresses(), testing::Contains(0x104));
}

TEST_F(Polling, Poll_ThatWasStoppedBefore_AsksForNothing) {
  mNowMs += 5000;
  std::stop_source stop;
  stop.request_stop();
  (void)mCamera.port.TakeRecords(); // What came before is of no interest.

  EXPECT_TRUE(mCamera.array->Poll(stop.get_token()) == KrResult::Code::Aborted);

  EXPECT_THAT(mCamera.port.TakeRecords(), IsEmpty());
}
