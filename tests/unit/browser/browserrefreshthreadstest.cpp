// Threads that meet in the rows: refreshing, notifications, the user's own refreshing, and rows that are filled anew.

#include "logic/browser/browserfilling.h"
#include "logic/browser/browserrefresh.h"

#include "await.h"
#include "browsedcamera.h"
#include "notificationwait.h"
#include "portgate.h"
#include "threadstate.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <set>
#include <thread>

namespace krgui {

namespace {

constexpr int kRegisters = 30;
constexpr std::uint64_t kPolledAddress = 0x1000;
constexpr const char* kTooLate = "The device did not answer in time.";

constexpr std::uint64_t GetAddress(int aIndex) {
  return static_cast<std::uint64_t>(aIndex) * 8;
}

/// Registers in two categories, values of the array's own that have notifications, one of which locks the others, and
/// one that is polled.
std::string MakeNodes() {
  std::string nodes = kWaitNode +
                      "<Integer Name=\"Lock\"><Value>0</Value></Integer>"
                      "<IntReg Name=\"Polled\"><Address>" +
                      std::to_string(kPolledAddress) +
                      "</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><PollingTime>1"
                      "</PollingTime><Endianess>LittleEndian</Endianess></IntReg>\n";
  std::vector<std::string> registers;
  for (int i = 0; i < kRegisters; ++i) {
    registers.push_back("R" + std::to_string(i));
    nodes += MakeInteger(registers.back(), static_cast<int>(GetAddress(i)));
  }
  std::vector<std::string> settings = {"Lock", "Polled"};
  for (int i = 0; i < 5; ++i) {
    settings.push_back("S" + std::to_string(i));
    nodes += "<Integer Name=\"" + settings.back() + "\"><pIsLocked>Lock</pIsLocked><Value>0</Value></Integer>";
  }
  return nodes + MakeCategory("Root", {"Registers", "Settings"}) + MakeCategory("Registers", registers) +
         MakeCategory("Settings", settings);
}

class RefreshThreads : public testing::Test {
protected:
  void Fill(const BrowserOptions& aOptions = {}) { FillBrowserTree(*mCamera.array, aOptions, {}, mCamera.tree); }
  void Start(KrGenRefresh aMode) { mRefresh.Start(aMode, *mCamera.array, mCamera.tree); }
  void RefreshAll() { mRefresh.RefreshAll(*mCamera.array, mCamera.tree); }
  void PutRowsOnTheScreen(std::size_t aFirst, std::size_t aCount) {
    const auto& features = mCamera.tree.GetFeatures();
    for (std::size_t i = 0; i < features.size(); ++i) {
      features[i]->SetOnScreen(i >= aFirst && i < aFirst + aCount);
    }
    mRefresh.NoteScreenChange();
  }
  void SetRegisters(std::uint8_t aValue) {
    for (int i = 0; i < kRegisters; ++i) {
      mCamera.Poke(GetAddress(i), {aValue});
    }
  }
  /// The different values that the registers' rows show.
  std::set<std::string> GetRegisterTexts() {
    std::set<std::string> texts;
    for (const auto& feature : mCamera.tree.GetFeatures()) {
      if (feature->GetName().ToUtf8().starts_with('R')) {
        texts.insert(feature->GetValue(false).ToUtf8());
      }
    }
    return texts;
  }
  std::size_t CountErrors() {
    std::size_t count = 0;
    for (const auto& feature : mCamera.tree.GetFeatures()) {
      count += feature->HasError() ? 1 : 0;
    }
    return count;
  }
  /// The device answers nobody any more; whoever asks for one address waits, until the wait is over and fails.
  void GoSilent() {
    mNotifications.Await();
    mSilence.CloseAt(mCamera.port, GetAddress(5), {KrResult::Code::TimeLimitExceeded, kTooLate});
  }

  PortGate mSilence; // Outlives the camera, whose threads may be in it.
  BrowsedCamera mCamera{MakeNodes()};
  NotificationWait mNotifications{mCamera.Integer("Wait")};
  BrowserRefresh mRefresh{mCamera.notifier, {.automaticMs = 1, .pollingMs = 1}};
};

} // namespace

TEST_F(RefreshThreads, RefreshAll_WhileTheAutomaticThreadWalks_ShowsWhatWasThereWhenItWasAsked) {
  Fill();
  PutRowsOnTheScreen(0, mCamera.tree.GetFeatures().size());
  Start(KrGenRefresh::Automatic);

  for (int round = 1; round <= 200; ++round) {
    SetRegisters(static_cast<std::uint8_t>(round % 100));
    RefreshAll();
    ASSERT_THAT(GetRegisterTexts(), testing::ElementsAre(std::to_string(round % 100) + " "));
  }

  EXPECT_TRUE(mRefresh.IsRunning());
  mRefresh.Stop();
  EXPECT_EQ(CountErrors(), 0U);
}

TEST_F(RefreshThreads, TimeOutOfTheRefreshThread_WhileRowsAreFilledAnew_EndsThereAndShowsTheErrorAfterwards) {
  Fill();
  GoSilent();
  Start(KrGenRefresh::Automatic);
  ASSERT_TRUE(mSilence.AwaitReached());
  krtest::CallBeside rebuilding([this] {
    mRefresh.Stop();
    mCamera.tree.Clear();
    Fill();
  });

  EXPECT_TRUE(rebuilding.Waits());
  mSilence.Open();
  rebuilding.Join();

  RefreshAll();
  EXPECT_EQ(CountErrors(), kRegisters + 1U);
  mCamera.port.SetFault({});
  RefreshAll();
  EXPECT_EQ(CountErrors(), 0U);
}

TEST_F(RefreshThreads, TimeOutOfTheNotificationThread_WhileRowsAreFilledAnew_LeavesWholeRows) {
  Fill();
  RefreshAll();
  ASSERT_TRUE(mCamera.Integer("R5").SetValue(9).IsOK());
  GoSilent();
  mCamera.array->InvalidateCache();
  ASSERT_TRUE(mSilence.AwaitReached());
  std::future<void> rebuilding = std::async(std::launch::async, [this] {
    mCamera.tree.Clear();
    Fill();
  });
  mSilence.Open();
  rebuilding.get();
  mCamera.port.SetFault({});

  RefreshAll();

  EXPECT_EQ(CountErrors(), 0U);
  EXPECT_STREQ(mCamera.Node("R5").GetValue(false).CStr(), "9 ");
}

TEST_F(RefreshThreads, RowsFilledAnew200Times_WhileValuesChangeAndEveryModeRuns_ShowTheLastValuesInTheEnd) {
  std::atomic<bool> isOver = false;
  std::atomic<int> writes = 0;
  std::thread device([&] {
    for (; !isOver; ++writes) {
      const auto value = static_cast<std::uint8_t>(writes % 100);
      mCamera.Poke(kPolledAddress, {value});
      SetRegisters(value);
      EXPECT_TRUE(mCamera.Integer("Lock").SetValue(0).IsOK());
      EXPECT_TRUE(mCamera.Integer(writes % 2 == 0 ? "S1" : "S4").SetValue(writes).IsOK());
      EXPECT_TRUE(mCamera.Integer("Lock").SetValue(writes % 2).IsOK());
    }
  });
  std::set<GridItem> told;

  for (std::size_t round = 0; round < 200; ++round) {
    BrowserOptions options;
    options.isTree = round % 3 != 0;
    Fill(options);
    PutRowsOnTheScreen(round % 7, 10);
    Start(round % 2 == 0 ? KrGenRefresh::Automatic : KrGenRefresh::Polling);
    // Stopped after each number of rows that there is, none among them.
    for (const GridItem row : mCamera.TakeChangedRows(round % 38)) {
      told.insert(row);
      ASSERT_NE(row, kNoItem);
    }
    PutRowsOnTheScreen(round % 11, 10);
    mRefresh.Stop();
    const std::size_t rows = mCamera.tree.GetFeatures().size();
    mCamera.tree.Clear();
    ASSERT_EQ(rows, kRegisters + 7U);
  }
  ASSERT_TRUE(krtest::Await([&] { return writes >= 200; }));
  isOver = true;
  device.join();

  Fill();
  for (const GridItem row : told) {
    EXPECT_EQ(mCamera.tree.Find(row), nullptr) << "what was told of earlier rows finds nothing";
  }
  EXPECT_FALSE(told.empty());
  SetRegisters(77);
  RefreshAll();
  EXPECT_EQ(GetRegisterTexts(), std::set<std::string>{"77 "});
  EXPECT_EQ(CountErrors(), 0U);
}

} // namespace krgui
