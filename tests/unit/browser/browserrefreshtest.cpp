#include "logic/browser/browserrefresh.h"

#include "await.h"
#include "browsedcamera.h"
#include "krbase/krlogger.h"
#include "notificationwait.h"
#include "portgate.h"
#include "threadstate.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <map>
#include <thread>

namespace krgui {

namespace {

constexpr std::size_t kFeatures = 40;
constexpr int kPolled = 0x1000;
/// One pass and no further.
constexpr RefreshRhythm kNeverAgain{.automaticMs = std::numeric_limits<std::int32_t>::max()};
/// One pass after the other.
constexpr RefreshRhythm kAtOnce{.automaticMs = 1};
/// For what must not happen: a longer time would find no more faults, and no time lets a test fail without one.
constexpr std::chrono::milliseconds kUnlikelyToTakeLonger{300};

std::string GetFeatureName(std::size_t aIndex) {
  return "F" + std::to_string(aIndex);
}

constexpr std::uint64_t GetAddress(std::size_t aIndex) {
  return aIndex * 8;
}

// As many plain registers, and one that the device is to be polled for.
std::string MakeNodes() {
  std::string nodes = kWaitNode;
  for (std::size_t i = 0; i < kFeatures; ++i) {
    nodes += MakeInteger(GetFeatureName(i), static_cast<int>(GetAddress(i)));
  }
  return nodes + "<IntReg Name=\"Polled\"><Address>" + std::to_string(kPolled) +
         "</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><PollingTime>1</PollingTime>"
         "<Endianess>LittleEndian</Endianess></IntReg>\n";
}

// A refresh of a camera whose features are all in the tree, in their order.
class BrowserRefreshTest : public testing::Test {
protected:
  void AddRows(std::size_t aCount = kFeatures) {
    for (std::size_t i = 0; i < aCount; ++i) {
      (void)mCamera.Node(GetFeatureName(i).c_str());
    }
  }
  TreeItemData& Row(std::size_t aIndex) { return *mCamera.tree.GetFeatures()[aIndex]; }
  GridItem Item(std::size_t aIndex) { return Row(aIndex).GetItem(); }
  std::vector<GridItem> AllItems() {
    std::vector<GridItem> items;
    for (const auto& feature : mCamera.tree.GetFeatures()) {
      items.push_back(feature->GetItem());
    }
    return items;
  }
  void Start(KrGenRefresh aMode) { mRefresh.Start(aMode, *mCamera.array, mCamera.tree); }
  std::vector<GridItem> TakeAll() {
    std::vector<GridItem> items;
    while (const std::optional<MessageQueue::Taken> message = mCamera.queue->Take()) {
      items.push_back(message->Get().first);
    }
    return items;
  }
  /// Takes messages until a row has changed to a value; its text in the end.
  std::string WaitForValue(TreeItemData& aRow, const std::string& aValue) {
    while (aRow.GetValue(false) != KrString(aValue)) {
      if (!mCamera.TakeChangedRow()) {
        break;
      }
    }
    return aRow.GetValue(false).ToUtf8();
  }
  /// How many registers were read once, twice and so on since the port was asked last.
  std::map<std::size_t, std::size_t> CountReadsOfEach() {
    std::map<std::uint64_t, std::size_t> reads;
    for (const RegisterAccessRecord& record : mCamera.port.TakeRecords()) {
      ++reads[record.address];
    }
    std::map<std::size_t, std::size_t> registers;
    for (const auto& [address, count] : reads) {
      ++registers[count];
    }
    return registers;
  }
  /// From now on only the refresh's own readings come to the gate.
  void CloseGate() {
    mNotifications.Await();
    mGate.CloseAt(mCamera.port, GetAddress(5));
  }

  PortGate mGate; // Outlives the camera, whose threads may be in it.
  BrowsedCamera mCamera{MakeNodes()};
  NotificationWait mNotifications{mCamera.Integer("Wait")};
  BrowserRefresh mRefresh{mCamera.notifier};
};

} // namespace

TEST_F(BrowserRefreshTest, Manual_Start_ReadsEverythingHereAndNow) {
  AddRows();

  Start(KrGenRefresh::Manual);

  EXPECT_FALSE(mRefresh.IsRunning());
  EXPECT_TRUE(std::all_of(mCamera.tree.GetFeatures().begin(), mCamera.tree.GetFeatures().end(),
                          [](const auto& feature) { return feature->IsRead(); }));
  EXPECT_EQ(TakeAll(), AllItems());
}

TEST_F(BrowserRefreshTest, RefreshAll_ValueThatTheArrayRemembers_IsForgotten) {
  TreeItemData& polled = mCamera.Node("Polled");
  Start(KrGenRefresh::Manual);
  mCamera.Poke(kPolled, {7});

  mRefresh.RefreshAll(*mCamera.array, mCamera.tree);

  EXPECT_STREQ(polled.GetValue(false).CStr(), "7 ");
}

TEST_F(BrowserRefreshTest, RefreshAll_AgainAndAgain_ReadsEachRegisterOnce) {
  AddRows();
  (void)mCamera.Node("Polled");
  Start(KrGenRefresh::Manual);

  for (int round = 0; round < 3; ++round) {
    mNotifications.Await();
    (void)mCamera.port.TakeRecords();

    mRefresh.RefreshAll(*mCamera.array, mCamera.tree);

    mNotifications.Await();
    EXPECT_THAT(CountReadsOfEach(), testing::ElementsAre(testing::Pair(1, kFeatures + 1))) << round;
  }
}

TEST_F(BrowserRefreshTest, RefreshAll_OtherListenerToAFeature_HearsOfWhatTheDeviceChanged) {
  AddRows();
  Start(KrGenRefresh::Manual);
  RecordingSink other;
  other.Listen(mCamera.Integer("F7"));
  mCamera.Poke(GetAddress(7), {9});

  mRefresh.RefreshAll(*mCamera.array, mCamera.tree);

  other.WaitForCalls(1);
  EXPECT_STREQ(Row(7).GetValue(false).CStr(), "9 ");
}

TEST_F(BrowserRefreshTest, RefreshAll_WhileTheProgramWrites_LosesNoChange) {
  AddRows();
  Start(KrGenRefresh::Manual);
  std::atomic<bool> isOver = false;
  std::int64_t written = 0;
  std::thread program([&] {
    while (!isOver) {
      EXPECT_TRUE(mCamera.Integer("F7").SetValue(++written).IsOK());
    }
  });

  for (int round = 0; round < 100; ++round) {
    mRefresh.RefreshAll(*mCamera.array, mCamera.tree);
  }
  isOver = true;
  program.join();

  mNotifications.Await();
  EXPECT_EQ(Row(7).GetValue(false), KrString(std::to_string(written) + " "));
}

TEST_F(BrowserRefreshTest, RefreshAll_AfterAStop_TellsOfEveryRow) {
  AddRows();
  Start(KrGenRefresh::Automatic);
  mRefresh.Stop();
  (void)TakeAll();

  mRefresh.RefreshAll(*mCamera.array, mCamera.tree);

  EXPECT_EQ(TakeAll(), AllItems());
}

TEST_F(BrowserRefreshTest, RefreshAll_ClosedArray_ShowsErrorsAndEnds) {
  AddRows(3);
  mCamera.array->Close();

  mRefresh.RefreshAll(*mCamera.array, mCamera.tree);

  EXPECT_TRUE(Row(0).HasError());
  EXPECT_EQ(TakeAll(), AllItems());
}

TEST(RefreshRhythm, WhereNothingIsSaid_WaitsTwoSecondsAndATenthOfOne) {
  EXPECT_EQ(RefreshRhythm().automaticMs, 2000U);
  EXPECT_EQ(RefreshRhythm().pollingMs, 100U);
}

TEST_F(BrowserRefreshTest, Threads_Begin_AreLoggedOnTheLibrarysChannel) {
  const KrLogCapture capture;
  AddRows(1);

  Start(KrGenRefresh::Automatic);
  mRefresh.Stop();
  Start(KrGenRefresh::Polling);
  mRefresh.Stop();

  std::vector<std::string> told;
  for (const KrLogRecord& record : capture.GetRecords()) {
    EXPECT_EQ(record.level, KrLogLevel::Info);
    told.push_back(record.channel.ToUtf8() + ": " + record.text.ToUtf8());
  }
  EXPECT_THAT(told, testing::ElementsAre("KrGUILib: GenICam browser thread (auto) started",
                                         "KrGUILib: GenICam browser thread (polling) started"));
}

TEST_F(BrowserRefreshTest, Automatic_NothingOnTheScreen_ReadsEveryRowOnceInItsOrder) {
  AddRows();

  Start(KrGenRefresh::Automatic);

  EXPECT_EQ(mCamera.TakeChangedRows(kFeatures), AllItems());
  EXPECT_TRUE(mRefresh.IsRunning());
}

TEST_F(BrowserRefreshTest, Automatic_RowsOnTheScreen_AreReadFirst) {
  AddRows();
  Row(20).SetOnScreen(true);
  Row(30).SetOnScreen(true);
  std::vector<GridItem> expected = {Item(20), Item(30)};
  for (std::size_t i = 0; i < kFeatures; ++i) {
    if (i != 20 && i != 30) {
      expected.push_back(Item(i));
    }
  }

  Start(KrGenRefresh::Automatic);

  EXPECT_EQ(mCamera.TakeChangedRows(kFeatures), expected);
}

TEST_F(BrowserRefreshTest, Automatic_RowsThatComeOntoTheScreenMeanwhile_AreReadNext) {
  AddRows();
  CloseGate();
  Start(KrGenRefresh::Automatic);
  ASSERT_TRUE(mGate.AwaitReached());

  Row(35).SetOnScreen(true);
  mRefresh.NoteScreenChange();
  mGate.Open();

  const std::vector<GridItem> order = mCamera.TakeChangedRows(kFeatures);
  const auto placeOf = [&](std::size_t aRow) { return std::find(order.begin(), order.end(), Item(aRow)); };
  EXPECT_LT(placeOf(35), placeOf(6));
  EXPECT_NE(placeOf(6), order.end());
}

TEST_F(BrowserRefreshTest, Automatic_RowOnTheScreen_IsReadInEveryPassAndOthersAreNot) {
  AddRows();
  Row(3).SetOnScreen(true);
  BrowserRefresh refresh(mCamera.notifier, kAtOnce);
  refresh.Start(KrGenRefresh::Automatic, *mCamera.array, mCamera.tree);
  (void)mCamera.TakeChangedRows(kFeatures);
  mCamera.Poke(GetAddress(2), {9});
  mCamera.Poke(GetAddress(3), {9});

  EXPECT_EQ(WaitForValue(Row(3), "9 "), "9 ");
  refresh.Stop();
  EXPECT_STREQ(Row(2).GetValue(false).CStr(), "0 ");
}

TEST_F(BrowserRefreshTest, Automatic_ScrollingBetweenTwoPasses_ReadsNothingAgain) {
  AddRows();
  BrowserRefresh refresh(mCamera.notifier, kNeverAgain);
  refresh.Start(KrGenRefresh::Automatic, *mCamera.array, mCamera.tree);
  (void)mCamera.TakeChangedRows(kFeatures);
  const std::size_t reads = mCamera.port.CountReads();

  for (std::size_t i = 0; i < kFeatures; ++i) {
    Row(i).SetOnScreen(true);
    refresh.NoteScreenChange();
  }

  EXPECT_FALSE(mCamera.IsARowChangedWithin(kUnlikelyToTakeLonger));
  refresh.Stop();
  EXPECT_EQ(mCamera.port.CountReads(), reads);
}

TEST_F(BrowserRefreshTest, Automatic_ScreenThatChangesAllTheTime_StillReadsEveryRowOnceAPass) {
  AddRows();
  Start(KrGenRefresh::Automatic);

  for (int i = 0; i < 10000; ++i) {
    mRefresh.NoteScreenChange();
  }

  const std::vector<GridItem> rows = mCamera.TakeChangedRows(kFeatures);
  EXPECT_THAT(rows, testing::UnorderedElementsAreArray(AllItems()));
  mRefresh.Stop();
  EXPECT_TRUE(TakeAll().empty());
}

TEST_F(BrowserRefreshTest, Automatic_WakeUpBetweenTwoPasses_ReadsWhatIsOnTheScreenAgain) {
  AddRows();
  BrowserRefresh refresh(mCamera.notifier, kNeverAgain);
  Row(3).SetOnScreen(true);
  refresh.Start(KrGenRefresh::Automatic, *mCamera.array, mCamera.tree);
  (void)mCamera.TakeChangedRows(kFeatures);
  mCamera.Poke(GetAddress(2), {9});
  mCamera.Poke(GetAddress(3), {9});

  refresh.WakeUp();

  EXPECT_EQ(WaitForValue(Row(3), "9 "), "9 ");
  refresh.Stop();
  EXPECT_STREQ(Row(2).GetValue(false).CStr(), "0 ");
}

TEST_F(BrowserRefreshTest, Automatic_EmptyTree_RunsUntilItIsStopped) {
  Start(KrGenRefresh::Automatic);
  EXPECT_TRUE(mRefresh.IsRunning());

  mRefresh.Stop();

  EXPECT_FALSE(mRefresh.IsRunning());
}

TEST_F(BrowserRefreshTest, Automatic_DeviceThatDoesNotAnswer_ShowsTheErrorInEachRow) {
  mCamera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "late"); });
  AddRows(4);

  Start(KrGenRefresh::Automatic);

  (void)mCamera.TakeChangedRows(4);
  EXPECT_TRUE(Row(3).HasError());
}

TEST_F(BrowserRefreshTest, Polling_Start_ReadsEveryRowOnceInItsOrder) {
  AddRows();

  Start(KrGenRefresh::Polling);

  EXPECT_EQ(mCamera.TakeChangedRows(kFeatures), AllItems());
}

TEST_F(BrowserRefreshTest, Polling_ValuesThatChangeInTheDevice_ReachOnlyThoseThatArePolled) {
  AddRows(2);
  TreeItemData& polled = mCamera.Node("Polled");
  Row(0).SetOnScreen(true);
  Start(KrGenRefresh::Polling);
  (void)mCamera.TakeChangedRows(3);
  mCamera.Poke(GetAddress(0), {5});

  mCamera.Poke(kPolled, {1});
  EXPECT_EQ(WaitForValue(polled, "1 "), "1 ");
  mCamera.Poke(kPolled, {2});
  EXPECT_EQ(WaitForValue(polled, "2 "), "2 ");

  mRefresh.Stop();
  EXPECT_STREQ(Row(0).GetValue(false).CStr(), "0 ");
}

TEST_F(BrowserRefreshTest, Polling_ThatFails_IsLoggedOnceUntilItWorksAgain) {
  const KrLogCapture capture;
  (void)mCamera.Node("Polled");
  std::atomic<int> failures = 0;
  const auto failPolling = [&](const RegisterAccessRecord& access) {
    failures += access.address == kPolled ? 1 : 0;
    return access.address == kPolled ? KrResult(KrResult::Code::TimeLimitExceeded, "Too late.") : KrResult();
  };
  const auto isLogged = [&](KrLogLevel aLevel, const char* aBegin, int aTimes) {
    const std::vector<KrLogRecord> records = capture.GetRecords();
    return aTimes <= std::count_if(records.begin(), records.end(), [&](const KrLogRecord& record) {
             return record.level == aLevel && record.text.ToUtf8().starts_with(aBegin);
           });
  };
  Start(KrGenRefresh::Polling);
  (void)mCamera.TakeChangedRow();

  for (const int round : {1, 2}) {
    failures = 0;
    mCamera.port.SetFault(failPolling);
    ASSERT_TRUE(krtest::Await([&] { return failures >= 8 && isLogged(KrLogLevel::Warning, "Polling", round); }));
    mCamera.port.SetFault({});
    ASSERT_TRUE(krtest::Await([&] { return isLogged(KrLogLevel::Info, "Polling", round); }));
  }
  mRefresh.Stop();

  std::vector<std::string> told;
  for (const KrLogRecord& record : capture.GetRecords()) {
    const bool isWarning = record.level == KrLogLevel::Warning;
    told.push_back((isWarning ? "warning: " : "") + record.text.ToUtf8());
  }
  const std::string works = "Polling the device works again.";
  const auto failed =
      testing::AllOf(testing::StartsWith("warning: Polling the device failed"), testing::HasSubstr("Too late."));
  EXPECT_THAT(told, testing::ElementsAre(testing::HasSubstr("started"), failed, works, failed, works));
}

TEST_F(BrowserRefreshTest, Stop_WithoutAThread_DoesNothing) {
  mRefresh.Stop();

  EXPECT_FALSE(mRefresh.IsRunning());
}

TEST_F(BrowserRefreshTest, Stop_WhileTheDeviceIsWaitedFor_EndsAfterThatReading) {
  AddRows();
  CloseGate();
  Start(KrGenRefresh::Automatic);
  ASSERT_TRUE(mGate.AwaitReached());

  krtest::CallBeside stop([this] { mRefresh.Stop(); });

  EXPECT_TRUE(stop.Waits()) << "the reading has not ended";
  mGate.Open();
  stop.Join();
  EXPECT_FALSE(mRefresh.IsRunning());
  EXPECT_TRUE(Row(5).IsRead());
  EXPECT_FALSE(Row(6).IsRead());
}

TEST_F(BrowserRefreshTest, StartAndStop_AgainAndAgainInEveryMode_LeavesNothingRunning) {
  AddRows();
  Row(1).SetOnScreen(true);

  for (int i = 0; i < 200; ++i) {
    Start(i % 2 == 0 ? KrGenRefresh::Automatic : KrGenRefresh::Polling);
    mRefresh.NoteScreenChange();
    mRefresh.Stop();
    ASSERT_FALSE(mRefresh.IsRunning());
  }
  Start(KrGenRefresh::Manual);

  EXPECT_TRUE(Row(kFeatures - 1).IsRead());
}

TEST_F(BrowserRefreshTest, Destruction_WhileItRuns_EndsTheThread) {
  AddRows();
  {
    BrowserRefresh refresh(mCamera.notifier);
    refresh.Start(KrGenRefresh::Automatic, *mCamera.array, mCamera.tree);
  }
  (void)TakeAll();

  mCamera.tree.Clear();

  EXPECT_TRUE(TakeAll().empty());
}

TEST_F(BrowserRefreshTest, Automatic_RowsComingAndGoingFast_ShowTheLastValueInTheEnd) {
  AddRows();
  BrowserRefresh refresh(mCamera.notifier, kAtOnce);
  refresh.Start(KrGenRefresh::Automatic, *mCamera.array, mCamera.tree);

  for (std::size_t i = 0; i < 2000; ++i) {
    Row(i % kFeatures).SetOnScreen(i % 3 == 0);
    refresh.NoteScreenChange();
    mCamera.Poke(GetAddress(i % kFeatures), {static_cast<std::uint8_t>(i)});
  }
  Row(7).SetOnScreen(true);
  mCamera.Poke(GetAddress(7), {99});
  refresh.NoteScreenChange();

  EXPECT_EQ(WaitForValue(Row(7), "99 "), "99 ");
}

} // namespace krgui
