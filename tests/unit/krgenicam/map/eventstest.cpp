#include "changingcamera.h"
#include "krbase/krlogger.h"
#include "threadrefusal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string kValueNodes = MakeRegister("WidthReg", 0x100) + MakeRegister("MaxReg", 0x104) +
                                MakeRegister("LockReg", 0x108) + MakeRegister("GateReg", 0x10C) + R"(
<Integer Name="Width"><pIsLocked>LockReg</pIsLocked><pValue>WidthReg</pValue><Min>0</Min><pMax>MaxReg</pMax></Integer>
<Enumeration Name="Format"><EnumEntry Name="Mono8"><Value>0</Value></EnumEntry>
  <EnumEntry Name="Mono12"><pIsAvailable>GateReg</pIsAvailable><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>
<Integer Name="Selector"><Value>0</Value><Min>0</Min><Max>3</Max><pSelected>Selected</pSelected></Integer>
<IntReg Name="Selected"><Address>0x200</Address><pIndex Offset="4">Selector</pIndex><Length>4</Length>
  <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>
<Command Name="Start"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
<String Name="Text"><Value>abc</Value></String>
<Register Name="Bytes"><Address>0x300</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
<Port Name="EventPort"><EventID>9C40</EventID></Port>
<IntReg Name="EventLine"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>EventPort</pPort>
  <Endianess>LittleEndian</Endianess></IntReg>
)" + MakeRegister("StartReg", 0x110, "<Cachable>NoCache</Cachable>");

class Events : public testing::Test {
protected:
  Events() {
    mCamera.Poke(0x104, {100, 0, 0, 0});
    mCamera.Poke(0x204, {7, 0, 0, 0});
  }

  ChangingCamera mCamera{kValueNodes};
};

// A sink has been told that Width is 1, and is at work until it may go on.
class EventsOfABusySink : public Events {
protected:
  void SetUp() override {
    mCamera.Watch("Width", mSink);
    ASSERT_TRUE(mCamera.Integer("Width").SetValue(1).IsOK());
    mIsAtWork.Await();
  }

  Occasion mIsAtWork, mMayGoOn;
  bool mIsFirst = true;
  RecordingSink mSink{[this](KrGenParameter&) {
    if (std::exchange(mIsFirst, false)) {
      mIsAtWork.Happen();
      mMayGoOn.Await();
    }
  }};
};

} // namespace

TEST_F(Events, SetValue_OfTheParameter_TellsItsSinkOnce) {
  RecordingSink sink;
  mCamera.Watch("Width", sink);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Width"));
}

TEST_F(Events, SetValue_OfTheValueThatItHas_TellsNobody) {
  RecordingSink sink;
  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  mCamera.Watch("Width", sink);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), IsEmpty());
}

TEST_F(Events, Registration_Alone_TellsNobodyWhetherCachedOrNot) {
  RecordingSink cached, uncached;
  EXPECT_EQ(Read(mCamera.Integer("Width"), &KrGenInteger::GetValue), 0);

  mCamera.Watch("Width", cached);
  mCamera.Watch("Selected", uncached);

  EXPECT_THAT(cached.TakeNames(), IsEmpty());
  EXPECT_THAT(uncached.TakeNames(), IsEmpty());
}

TEST_F(Events, Registration_OfWhatIsNotCached_AsksTheDeviceForNothing) {
  RecordingSink sink;
  (void)mCamera.port.TakeRecords();

  for (const char* const name : {"Width", "Format", "Selected", "Start", "Bytes"})
    sink.Listen(*mCamera.array->Get(name));
  mCamera.AwaitNotifications();

  EXPECT_THAT(mCamera.port.TakeRecords(), Each(testing::Field(&RegisterAccessRecord::address, 0xF000)));
  EXPECT_THAT(sink.TakeNames(), IsEmpty());
}

TEST_F(Events, SetValue_OfWhatTheParameterStandsOn_TellsItsSink) {
  struct {
    const char* what;
    const char* written;
    const char* watched;
  } constexpr kRows[] = {
      {"value", "WidthReg", "Width"},   {"range", "MaxReg", "Width"},         {"lock", "LockReg", "Width"},
      {"entries", "GateReg", "Format"}, {"selector", "Selector", "Selected"},
  };

  for (const auto& row : kRows) {
    RecordingSink sink;
    mCamera.Watch(row.watched, sink);

    ASSERT_TRUE(mCamera.Integer(row.written).SetValue(1).IsOK()) << row.what;
    mCamera.AwaitNotifications();

    EXPECT_THAT(sink.TakeNames(), ElementsAre(row.watched)) << row.what;
    ASSERT_TRUE(mCamera.array->Get(row.watched)->UnregisterEventSink(&sink).IsOK());
    ASSERT_TRUE(mCamera.Integer("LockReg").SetValue(0).IsOK());
  }
}

TEST_F(Events, SelectorChange_ToTheSameValueElsewhere_TellsNobodyButTheSelectorsSink) {
  RecordingSink selector, selected;
  mCamera.Watch("Selector", selector);
  mCamera.Watch("Selected", selected);

  ASSERT_TRUE(mCamera.Integer("Selector").SetValue(2).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(selector.TakeNames(), ElementsAre("Selector"));
  EXPECT_THAT(selected.TakeNames(), IsEmpty());
}

TEST_F(Events, TextsAndRegisters_WhenWritten_TellTheirSinks) {
  RecordingSink text, bytes;
  mCamera.Watch("Text", text);
  mCamera.Watch("Bytes", bytes);

  ASSERT_TRUE(mCamera.String("Text").SetValue("other").IsOK());
  ASSERT_TRUE(mCamera.Register("Bytes").SetValue({1, 2, 3, 4}).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(text.TakeNames(), ElementsAre("Text"));
  EXPECT_THAT(bytes.TakeNames(), ElementsAre("Bytes"));
}

TEST_F(Events, SetValue_OfTheBytesThatARegisterHas_TellsNobody) {
  RecordingSink sink;
  ASSERT_TRUE(mCamera.Register("Bytes").SetValue({1, 2, 3, 4}).IsOK());
  mCamera.Watch("Bytes", sink);

  ASSERT_TRUE(mCamera.Register("Bytes").SetValue({1, 2, 3, 4}).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), IsEmpty());
}

TEST_F(Events, InvalidateCache_AfterTheDeviceChangedARegister_TellsItsSink) {
  RecordingSink sink;
  mCamera.Watch("Bytes", sink);
  mCamera.Poke(0x303, {1});

  mCamera.array->InvalidateCache();
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Bytes"));
}

TEST_F(Events, InvalidateCache_AfterTheDeviceChanged_TellsWhatIsDifferent) {
  RecordingSink width, format;
  mCamera.Watch("Width", width);
  mCamera.Watch("Format", format);
  mCamera.Poke(0x100, {9, 0, 0, 0});

  mCamera.array->InvalidateCache();
  mCamera.AwaitNotifications();

  EXPECT_THAT(width.TakeNames(), ElementsAre("Width"));
  EXPECT_THAT(format.TakeNames(), IsEmpty());
}

TEST_F(Events, Invalidate_OfANodeAfterTheDeviceChanged_TellsWhatDependsOnIt) {
  RecordingSink sink;
  mCamera.Watch("Width", sink);
  mCamera.Poke(0x100, {9, 0, 0, 0});

  ASSERT_TRUE(mCamera.array->Invalidate("WidthReg").IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Width"));
}

TEST_F(Events, Command_UnderWayAndDone_TellsItsSinkOfBoth) {
  struct {
    const char* what;
    std::function<KrResult()> ask;
  } const rows[] = {
      {"IsDone",
       [this] {
         bool isDone = false;
         return mCamera.Command("Start").IsDone(isDone);
       }},
      {"Poll", [this] { return mCamera.array->Poll(); }},
  };
  RecordingSink sink;
  mCamera.Watch("Start", sink);

  for (const auto& row : rows) {
    ASSERT_TRUE(mCamera.Command("Start").Execute().IsOK());
    mCamera.AwaitNotifications();
    EXPECT_THAT(sink.TakeNames(), ElementsAre("Start")) << row.what << " under way";
    ASSERT_TRUE(row.ask().IsOK());
    mCamera.AwaitNotifications();
    EXPECT_THAT(sink.TakeNames(), IsEmpty()) << row.what << " still under way";
    mCamera.Poke(0x110, {0, 0, 0, 0});
    ASSERT_TRUE(row.ask().IsOK());
    mCamera.AwaitNotifications();
    EXPECT_THAT(sink.TakeNames(), ElementsAre("Start")) << row.what << " done";
  }
}

TEST_F(Events, DeliverEvent_WithNewData_TellsTheSinksOfItsNodes) {
  constexpr std::uint8_t kData[] = {5, 0, 0, 0};
  RecordingSink sink;
  mCamera.Watch("EventLine", sink);

  mCamera.array->DeliverEvent(0x9C40, kData, sizeof(kData));
  mCamera.AwaitNotifications();
  mCamera.array->DeliverEvent(0x9C40, kData, sizeof(kData));
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("EventLine"));
}

TEST_F(EventsOfABusySink, Changes_WhileTheSinkIsAtWork_AreToldAsOne) {
  for (std::int64_t value = 2; value < 50; ++value)
    ASSERT_TRUE(mCamera.Integer("Width").SetValue(value).IsOK());
  mMayGoOn.Happen();
  mCamera.AwaitNotifications();

  EXPECT_THAT(mSink.TakeNames(), SizeIs(2));
}

TEST_F(EventsOfABusySink, SetValue_ThereAndBackWhileTheSinkIsAtWork_IsNoChange) {
  ASSERT_TRUE(mCamera.Integer("Width").SetValue(2).IsOK());
  ASSERT_TRUE(mCamera.Integer("Width").SetValue(1).IsOK());
  mMayGoOn.Happen();
  mCamera.AwaitNotifications();

  EXPECT_THAT(mSink.TakeNames(), SizeIs(1));
}

TEST_F(Events, WhatMayHaveChangedSomethingUnknown_CountsAsAChangeOnce) {
  struct {
    const char* what;
    const char* watched;
    std::function<void()> happen;
  } const rows[] = {
      {"write", "Width", [this] { EXPECT_TRUE(mCamera.Integer("WidthReg").SetValue(0).IsOK()); }},
      {"selector", "Selected", [this] { EXPECT_TRUE(mCamera.Integer("Selector").SetValue(0).IsOK()); }},
      {"command", "Start", [this] { EXPECT_TRUE(mCamera.Command("Start").Execute().IsOK()); }},
      {"by name", "GateReg", [this] { EXPECT_TRUE(mCamera.array->Invalidate("GateReg").IsOK()); }},
  };

  for (const auto& row : rows) {
    RecordingSink sink;
    sink.Listen(*mCamera.array->Get(row.watched));

    row.happen();
    mCamera.AwaitNotifications();
    EXPECT_THAT(sink.TakeNames(), ElementsAre(row.watched)) << row.what;
    row.happen();
    mCamera.AwaitNotifications();

    EXPECT_THAT(sink.TakeNames(), IsEmpty()) << row.what << ", for the second time";
  }
}

TEST_F(Events, InvalidateCache_OfWhatNobodyHasAskedFor_IsNoChangeAndAsksTheDeviceForNothing) {
  RecordingSink sink;
  sink.Listen(mCamera.Integer("Width"));
  sink.Listen(mCamera.Integer("StartReg"));
  (void)mCamera.port.TakeRecords();

  mCamera.array->InvalidateCache();
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), IsEmpty());
  EXPECT_THAT(mCamera.port.TakeRecords(), Each(testing::Field(&RegisterAccessRecord::address, 0xF000)));
}

TEST_F(Events, InvalidateCache_OfWhatWasReadButNotKnownToTheSink_CountsAsAChange) {
  struct {
    const char* what;
    const char* name;
    bool isReadFirst;
  } constexpr kRows[] = {
      {"read after the registration", "Width", false},
      {"asked each time, and read before the registration", "StartReg", true},
  };

  for (const auto& row : kRows) {
    RecordingSink sink;
    const auto read = [&] { (void)Read(mCamera.Integer(row.name), &KrGenInteger::GetValue); };
    if (row.isReadFirst)
      read();
    sink.Listen(mCamera.Integer(row.name));
    if (!row.isReadFirst)
      read();

    mCamera.array->InvalidateCache();
    mCamera.AwaitNotifications();

    EXPECT_THAT(sink.TakeNames(), ElementsAre(row.name)) << row.what;
  }
}

TEST_F(Events, Registration_AfterAChangeThatIsStillToBeTold_IsNotToldOfIt) {
  Occasion isAtWork, mayGoOn;
  RecordingSink blocker([&](KrGenParameter&) {
    isAtWork.Happen();
    mayGoOn.Await();
  });
  RecordingSink early, late;
  mCamera.Watch("Text", blocker);
  mCamera.Watch("Selector", early);
  ASSERT_TRUE(mCamera.String("Text").SetValue("x").IsOK());
  isAtWork.Await();

  ASSERT_TRUE(mCamera.Integer("Selector").SetValue(3).IsOK());
  late.Listen(mCamera.Integer("Selector"));
  mayGoOn.Happen();
  mCamera.AwaitNotifications();

  EXPECT_THAT(early.TakeNames(), ElementsAre("Selector"));
  EXPECT_THAT(late.TakeNames(), IsEmpty());
}

TEST_F(Events, Registration_NullOrTwice_IsInvalidInput) {
  RecordingSink sink;
  KrGenParameter& width = mCamera.Integer("Width");

  EXPECT_TRUE(width.RegisterEventSink(nullptr) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(width.UnregisterEventSink(&sink) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(width.RegisterEventSink(&sink).IsOK());
  EXPECT_TRUE(width.RegisterEventSink(&sink) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(width.UnregisterEventSink(&sink).IsOK());
  EXPECT_TRUE(width.UnregisterEventSink(&sink) == KrResult::Code::InvalidInput);
}

TEST_F(Events, SeveralSinksAndParameters_EachHearOfTheirs) {
  RecordingSink both, one;
  mCamera.Watch("Width", both);
  mCamera.Watch("Format", both);
  mCamera.Watch("Width", one);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  ASSERT_TRUE(mCamera.Integer("GateReg").SetValue(1).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(both.TakeNames(), ElementsAre("Width", "Format"));
  EXPECT_THAT(one.TakeNames(), ElementsAre("Width"));
}

TEST_F(Events, UnregisterEventSink_InItsOwnCall_ReturnsAndEndsTheCalls) {
  RecordingSink* self = nullptr;
  RecordingSink sink([&](KrGenParameter& aParameter) { EXPECT_TRUE(aParameter.UnregisterEventSink(self).IsOK()); });
  self = &sink;
  mCamera.Watch("Width", sink);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  mCamera.AwaitNotifications();
  ASSERT_TRUE(mCamera.Integer("Width").SetValue(6).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), SizeIs(1));
}

TEST_F(Events, UnregisterEventSink_OfAnotherInACall_ThatOneIsNotCalled) {
  RecordingSink second;
  RecordingSink first([&](KrGenParameter& aParameter) { EXPECT_TRUE(aParameter.UnregisterEventSink(&second).IsOK()); });
  mCamera.Watch("Width", first);
  mCamera.Watch("Width", second);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(second.TakeNames(), IsEmpty());
}

TEST_F(Events, UnregisterEventSink_WhileItIsCalledElsewhere_WaitsForTheCall) {
  Occasion isAtWork, mayGoOn;
  std::atomic<bool> hasEnded = false;
  RecordingSink sink([&](KrGenParameter&) {
    isAtWork.Happen();
    mayGoOn.Await();
    hasEnded = true;
  });
  mCamera.Watch("Width", sink);
  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  isAtWork.Await();

  std::jthread unregistering([&] {
    EXPECT_TRUE(mCamera.Integer("Width").UnregisterEventSink(&sink).IsOK());
    EXPECT_TRUE(hasEnded);
  });
  mayGoOn.Happen();
}

TEST(EventsWithoutAThread, Registering_FailsAndNeverCallsTheSink) {
  DescribedCamera camera(kValueNodes);
  RecordingSink refused;
  {
    const ThreadRefusal noThreads;
    EXPECT_EQ(camera.Integer("Selector").RegisterEventSink(&refused), KrResult::Code::SystemError);
  }
  RecordingSink sink;
  sink.Listen(camera.Integer("Selector"));

  ASSERT_TRUE(camera.Integer("Selector").SetValue(2).IsOK());
  sink.WaitForCalls(1);

  EXPECT_THAT(refused.TakeNames(), IsEmpty());
  EXPECT_EQ(camera.Integer("Selector").UnregisterEventSink(&refused), KrResult::Code::InvalidInput);
}

TEST_F(Events, SinkThatReadsAndWrites_FindsTheNewValueAndCausesFurtherEvents) {
  std::int64_t seen = 0;
  RecordingSink format;
  RecordingSink width([&](KrGenParameter& aParameter) {
    seen = Read(dynamic_cast<KrGenInteger&>(aParameter), &KrGenInteger::GetValue);
    EXPECT_TRUE(mCamera.Integer("GateReg").SetValue(1).IsOK());
  });
  mCamera.Watch("Width", width);
  mCamera.Watch("Format", format);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  format.WaitForCalls(1);

  EXPECT_EQ(seen, 5);
}

TEST_F(Events, SinkThatWritesItsOwnParameter_HearsOfThatUntilNothingChangesAnyMore) {
  RecordingSink sink([&](KrGenParameter& aParameter) {
    KrGenInteger& width = dynamic_cast<KrGenInteger&>(aParameter);
    EXPECT_TRUE(width.SetValue(std::min<std::int64_t>(Read(width, &KrGenInteger::GetValue) + 1, 10)).IsOK());
  });
  mCamera.Watch("Width", sink);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(8).IsOK());
  sink.WaitForCalls(3);
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), SizeIs(3));
}

TEST_F(Events, SinkThatThrows_IsLoggedAndCalledAgain) {
  const KrLogCapture log;
  RecordingSink sink([](KrGenParameter&) { throw std::runtime_error("sink at fault"); });
  mCamera.Watch("Width", sink);

  ASSERT_TRUE(mCamera.Integer("Width").SetValue(5).IsOK());
  mCamera.AwaitNotifications();
  ASSERT_TRUE(mCamera.Integer("Width").SetValue(6).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_TRUE(log.Contains(KrLogLevel::Error, "A parameter's event sink threw an exception: sink at fault"));
  EXPECT_THAT(log.GetRecords(), SizeIs(2));
}

TEST_F(Events, Timeout_OfWhatIsWatched_IsToldAndSoIsItsEndAtThePollAfter) {
  RecordingSink sink;
  mCamera.Watch("Width", sink);
  mCamera.port.SetFault([](const RegisterAccessRecord& aAccess) {
    return aAccess.address == 0x100 ? KrResult(KrResult::Code::TimeLimitExceeded) : KrResult();
  });

  ASSERT_TRUE(mCamera.array->Invalidate("WidthReg").IsOK());
  mCamera.AwaitNotifications();
  EXPECT_THAT(sink.TakeNames(), ElementsAre("Width"));
  mCamera.port.SetFault({});
  ASSERT_TRUE(mCamera.array->Poll().IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(sink.TakeNames(), ElementsAre("Width"));
}
