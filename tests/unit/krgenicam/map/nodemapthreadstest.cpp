#include "changingcamera.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

// Several threads at one array at a time: for the thread sanitizer, and that nothing is lost.

namespace {

const std::string kNodes = MakeRegister("A", 0x100) + MakeRegister("B", 0x104) +
                           MakeRegister("Polled", 0x108, "<PollingTime>1</PollingTime>") + R"(
<IntSwissKnife Name="Sum"><pVariable Name="A">A</pVariable><pVariable Name="B">B</pVariable><Formula>A + B</Formula>
</IntSwissKnife>
<Integer Name="Selector"><Value>0</Value><Min>0</Min><Max>3</Max><pSelected>Selected</pSelected></Integer>
<IntReg Name="Selected"><Address>0x200</Address><pIndex Offset="4">Selector</pIndex><Length>4</Length>
  <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>
)";

} // namespace

TEST(NodeMapThreads, ReadingWritingPollingAndListening_FromSeveralThreads_EndsWithWhatWasWrittenLast) {
  constexpr std::int64_t kTurns = 300;
  std::atomic<std::uint64_t> nowMs = 0;
  ChangingCamera camera(kNodes, {.getTimeMs = [&] { return nowMs.load(); }});
  std::atomic<std::int64_t> lastSum = 0;
  RecordingSink sum([&](KrGenParameter& aParameter) {
    lastSum = Read(dynamic_cast<KrGenInteger&>(aParameter), &KrGenInteger::GetValue);
  });
  RecordingSink others;
  camera.Watch("Sum", sum);
  for (const char* const name : {"A", "B", "Polled", "Selected"})
    camera.Watch(name, others);

  const auto write = [&](const char* aName) {
    for (std::int64_t turn = 1; turn <= kTurns; ++turn)
      EXPECT_TRUE(camera.Integer(aName).SetValue(turn).IsOK());
  };
  {
    std::vector<std::jthread> threads;
    threads.emplace_back([&] { write("A"); });
    threads.emplace_back([&] { write("B"); });
    threads.emplace_back([&] {
      for (std::int64_t turn = 0; turn < kTurns; ++turn) {
        EXPECT_TRUE(camera.Integer("Selector").SetValue(turn % 4).IsOK());
        EXPECT_TRUE(camera.Integer("Selected").SetValue(turn).IsOK());
        (void)Read(camera.Integer("Sum"), &KrGenInteger::GetValue); // Read for its own sake.
      }
    });
    threads.emplace_back([&] {
      for (std::int64_t turn = 0; turn < kTurns; ++turn) {
        nowMs += 1;
        EXPECT_TRUE(camera.array->Poll().IsOK());
        EXPECT_NE(camera.array->Get("Sum")->GetAccessMode(), KrGenAccessMode::NotAvailable);
        if (turn % 50 == 0)
          camera.array->InvalidateCache();
      }
    });
  }
  camera.AwaitNotifications();

  EXPECT_EQ(Read(camera.Integer("Sum"), &KrGenInteger::GetValue), 2 * kTurns);
  EXPECT_EQ(lastSum, 2 * kTurns);
  EXPECT_TRUE(camera.array->Get("Sum")->UnregisterEventSink(&sum).IsOK());
}

TEST(NodeMapThreads, Turn_KeepsOtherThreadsWaitingUntilItsEnd) {
  ChangingCamera camera(kNodes);
  std::atomic<bool> isWritten = false;
  std::jthread other;
  {
    const KrGenParameterArray::Turn turn(*camera.array);
    other = std::jthread([&] {
      EXPECT_TRUE(camera.Integer("Selector").SetValue(3).IsOK());
      isWritten = true;
    });
    for (std::int64_t value = 0; value < 3; ++value) {
      const KrGenParameterArray::Turn within(*camera.array);
      EXPECT_TRUE(camera.Integer("Selector").SetValue(value).IsOK());
      for (int i = 0; i < 10000 && !isWritten; ++i)
        std::this_thread::yield();
      EXPECT_TRUE(camera.Integer("Selected").SetValue(10 + value).IsOK());
      EXPECT_EQ(Read(camera.Integer("Selector"), &KrGenInteger::GetValue), value);
    }
    EXPECT_FALSE(isWritten);
  }
  other.join();

  EXPECT_EQ(Read(camera.Integer("Selector"), &KrGenInteger::GetValue), 3);
  EXPECT_EQ(camera.Peek(0x200, 12), (std::vector<std::uint8_t>{10, 0, 0, 0, 11, 0, 0, 0, 12, 0, 0, 0}));
}

TEST(NodeMapThreads, Turn_OfEachOfTwoThreads_IsUndisturbedByTheOther) {
  ChangingCamera camera(kNodes);
  const auto take = [&](std::int64_t aValue) {
    for (int i = 0; i < 300; ++i) {
      const KrGenParameterArray::Turn turn(*camera.array);
      EXPECT_TRUE(camera.Integer("A").SetValue(aValue).IsOK());
      EXPECT_TRUE(camera.Integer("B").SetValue(1000 - aValue).IsOK());
      EXPECT_EQ(Read(camera.Integer("Sum"), &KrGenInteger::GetValue), 1000);
    }
  };
  std::jthread other([&] { take(1); });

  take(2);
}

TEST(NodeMapThreads, RegisteringAndUnregistering_WhileValuesChange_CallsNobodyWhoHasLeft) {
  ChangingCamera camera(kNodes);
  std::jthread writer([&](const std::stop_token& aStop) {
    for (std::int64_t value = 0; !aStop.stop_requested(); ++value)
      EXPECT_TRUE(camera.Integer("A").SetValue(value % 1000).IsOK());
  });

  for (int turn = 0; turn < 300; ++turn) {
    std::atomic<bool> isThere = true;
    RecordingSink sink([&](KrGenParameter&) { EXPECT_TRUE(isThere); });
    ASSERT_TRUE(camera.Integer("Sum").RegisterEventSink(&sink).IsOK());
    ASSERT_TRUE(camera.Integer("Sum").UnregisterEventSink(&sink).IsOK());
    isThere = false;
  }
}

namespace {

// A read of a register that lasts until it is let go.
class LastingRead {
public:
  LastingRead(ChangingCamera& aCamera, const char* aName, std::uint64_t aAddress) {
    aCamera.port.SetFault([this, aAddress](const RegisterAccessRecord& aRecord) {
      if (aRecord.address == aAddress) {
        mHasBegun.set_value();
        mMayEnd.get_future().wait();
      }
      return KrResult();
    });
    mThread = std::jthread([this, &aCamera, aName] {
      std::int64_t value = 0;
      EXPECT_TRUE(aCamera.Integer(aName).GetValue(value).IsOK());
    });
    EXPECT_EQ(mHasBegun.get_future().wait_for(kPatience), std::future_status::ready);
    // The accesses that come later are as ever; the port's lock is held by the one that lasts.
    mLift = std::jthread([&aCamera] { aCamera.port.SetFault({}); });
  }
  void End() {
    mMayEnd.set_value();
    mThread.join();
    mLift.join();
  }

private:
  std::promise<void> mHasBegun;
  std::promise<void> mMayEnd;
  std::jthread mThread;
  std::jthread mLift;
};

} // namespace

TEST(NodeMapThreads, RegisteringAndAskingForTexts_WhileARegisterIsRead_DoesNotWaitForIt) {
  ChangingCamera camera(kNodes);
  RecordingSink sink;
  LastingRead read(camera, "A", 0x100);

  sink.Listen(camera.Integer("B")); // One that waits would wait for ever.
  KrString name;
  KrGenVisibility visibility = KrGenVisibility::Invisible;
  KrGenParameterList selectors;
  EXPECT_TRUE(camera.Integer("B").GetDisplayName(name).IsOK());
  EXPECT_TRUE(camera.Integer("B").GetVisibility(visibility).IsOK());
  EXPECT_TRUE(camera.Integer("Selected").GetSelectingParameters(selectors).IsOK());
  EXPECT_TRUE(camera.Integer("B").IsVisible(KrGenVisibility::Guru));
  EXPECT_TRUE(camera.Integer("B").UnregisterEventSink(&sink).IsOK());
  EXPECT_TRUE(camera.Integer("B").RegisterEventSink(&sink).IsOK());
  read.End();

  EXPECT_EQ(name, "B");
  EXPECT_EQ(selectors.GetCount(), 1u);
}

TEST(NodeMapThreads, SinkRegisteredWhileARegisterIsRead_KnowsWhatWasRememberedThen) {
  ChangingCamera camera(kNodes);
  EXPECT_EQ(Read(camera.Integer("B"), &KrGenInteger::GetValue), 0);
  RecordingSink sink;
  LastingRead read(camera, "A", 0x100);

  sink.Listen(camera.Integer("B"));
  read.End();
  camera.Poke(0x104, {7});
  camera.array->InvalidateCache();

  sink.WaitForCalls(1);
  EXPECT_EQ(Read(camera.Integer("B"), &KrGenInteger::GetValue), 7);
}
