// How the feature browser's window keeps values fresh in each mode, and what it says about errors.

#include "browserfixture.h"
#include "portgate.h"

#include "await.h"
#include "krbase/krlogger.h"

#include <QGuiApplication>

#include <optional>
#include <thread>

namespace krgui {

namespace {

class RefreshModes : public GenBrowserTest {
protected:
  RefreshModes() { mCamera.Poke(kWidthAddress, {64, 0, 0, 0}); }
  void Open(KrGenRefresh aMode) {
    mWindow.SetRefreshMode(aMode);
    GenBrowserTest::Open();
  }
  KrLogCapture mLog;
};

} // namespace

TEST_F(RefreshModes, Automatic_IsTheFirstMode) {
  EXPECT_EQ(mWindow.GetRefreshMode(), KrGenRefresh::Automatic);
}

TEST_F(RefreshModes, Automatic_ReadsEveryFeatureAndReadsAgainWhatIsOnTheScreen) {
  Open(KrGenRefresh::Automatic);
  ASSERT_TRUE(AwaitValue("Width", "64"));
  EXPECT_TRUE(mLog.Contains(KrLogLevel::Info, "GenICam browser thread (auto) started"));

  mCamera.Poke(kWidthAddress, {65, 0, 0, 0});

  EXPECT_TRUE(AwaitValue("Width", "65"));
}

TEST_F(RefreshModes, Polling_ReadsEveryFeatureOnce) {
  Open(KrGenRefresh::Polling);

  EXPECT_TRUE(AwaitValue("Width", "64"));
  EXPECT_TRUE(AwaitValue("Gain", "1.5"));
  EXPECT_TRUE(mLog.Contains(KrLogLevel::Info, "GenICam browser thread (polling) started"));
}

TEST_F(RefreshModes, Polling_ChangeByTheProgram_ReachesTheRowByTheArraysEvents) {
  Open(KrGenRefresh::Polling);
  ASSERT_TRUE(AwaitValue("DigitalGainSelector", "0"));

  ASSERT_TRUE(mCamera.Integer("DigitalGainSelector").SetValue(5).IsOK());

  EXPECT_TRUE(AwaitValue("DigitalGainSelector", "5"));
}

TEST_F(RefreshModes, Manual_HasReadEveryFeatureWhenTheWindowIsOpen) {
  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  mWindow.SetGenParameterArray(mCamera.array.get());
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  EXPECT_EQ(mWindow.GetValue("Width"), "64");
  EXPECT_EQ(mWindow.GetValue("Gain"), "1.5");
  EXPECT_THAT(mLog.GetRecords(), testing::IsEmpty()) << "no thread was started";
}

TEST_F(RefreshModes, RefreshButton_InManualMode_ReadsEverythingAnew) {
  Open(KrGenRefresh::Manual);
  mCamera.Poke(kWidthAddress, {66, 0, 0, 0});

  mWindow.Click("Refresh");

  EXPECT_EQ(mWindow.GetValue("Width"), "66");
}

TEST_F(RefreshModes, RefreshByTheProgram_InPollingMode_ReadsWhatIsNotPolled) {
  Open(KrGenRefresh::Polling);
  ASSERT_TRUE(AwaitValue("Width", "64"));
  mCamera.Poke(kWidthAddress, {66, 0, 0, 0});

  mWindow.Refresh();

  EXPECT_EQ(mWindow.GetValue("Width"), "66");
}

TEST_F(RefreshModes, F5_InManualMode_ReadsEverythingAnew) {
  Open(KrGenRefresh::Manual);
  mCamera.Poke(kWidthAddress, {67, 0, 0, 0});

  Press(Qt::Key_F5);

  EXPECT_EQ(mWindow.GetValue("Width"), "67");
}

TEST_F(RefreshModes, Refresh_ShowsTheWaitCursorWhileItReads) {
  Open(KrGenRefresh::Manual);
  std::optional<Qt::CursorShape> during;
  mCamera.port.SetFault([&](const RegisterAccessRecord&) {
    if (const QCursor* cursor = QGuiApplication::overrideCursor())
      during = cursor->shape();
    return KrResult();
  });

  mWindow.Refresh();

  EXPECT_EQ(during, Qt::WaitCursor);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(RefreshModes, FillingAnewInManualMode_ShowsTheWaitCursorWhileItReads) {
  Open(KrGenRefresh::Manual);
  std::optional<Qt::CursorShape> during;
  mCamera.port.SetFault([&, here = std::this_thread::get_id()](const RegisterAccessRecord&) {
    const QCursor* const cursor = std::this_thread::get_id() == here ? QGuiApplication::overrideCursor() : nullptr;
    if (cursor)
      during = cursor->shape();
    return KrResult();
  });

  mWindow.GetVisibilityList().setCurrentIndex(1);
  mCamera.port.SetFault({});

  EXPECT_EQ(during, Qt::WaitCursor);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(RefreshModes, RefreshButton_IsEnabledInManualModeOnly) {
  Open(KrGenRefresh::Automatic);
  EXPECT_FALSE(mWindow.GetButton("Refresh").isEnabled());

  mWindow.SetRefreshMode(KrGenRefresh::Manual);
  EXPECT_TRUE(mWindow.GetButton("Refresh").isEnabled());

  mWindow.SetRefreshMode(KrGenRefresh::Polling);
  EXPECT_FALSE(mWindow.GetButton("Refresh").isEnabled());
}

TEST_F(RefreshModes, SetRefreshMode_ToAnother_FillsAnewAndToTheSameDoesNot) {
  Open(KrGenRefresh::Polling);
  const GridItem row = mWindow.FindRow("Width");

  mWindow.SetRefreshMode(KrGenRefresh::Polling);
  EXPECT_EQ(mWindow.FindRow("Width"), row);

  mWindow.SetRefreshMode(KrGenRefresh::Automatic);
  EXPECT_NE(mWindow.FindRow("Width"), row);
  EXPECT_TRUE(AwaitValue("Width", "64"));
}

TEST_F(RefreshModes, ManualAfterAutomatic_StopsTheThread) {
  Open(KrGenRefresh::Automatic);
  ASSERT_TRUE(mWindow.IsRefreshThreadRunning());

  mWindow.SetRefreshMode(KrGenRefresh::Manual);

  EXPECT_FALSE(mWindow.IsRefreshThreadRunning());
  EXPECT_EQ(mWindow.GetValue("Width"), "64");
}

TEST_F(RefreshModes, RefreshWithoutArrayOrWindow_DoesNothing) {
  mWindow.Refresh();
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  mWindow.Refresh();
  ASSERT_TRUE(mWindow.Close().IsOK());
  mWindow.SetGenParameterArray(mCamera.array.get());
  mCamera.port.TakeRecords();
  mWindow.Refresh();

  EXPECT_THAT(mCamera.port.TakeRecords(), testing::IsEmpty());
}

TEST_F(RefreshModes, ReadThatFails_MakesTheIndicatorShowAnErrorAndItsEndTakesItAway) {
  mCamera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address == kWidthAddress ? KrResult(KrResult::Code::TimeLimitExceeded, "The device kept silent.")
                                            : KrResult();
  });
  Open(KrGenRefresh::Manual);
  EXPECT_TRUE(WaitFor([this] { return mWindow.GetErrorButton().ShowsErrors(); }));

  mCamera.port.SetFault({});
  mWindow.Refresh();

  EXPECT_TRUE(WaitFor([this] { return !mWindow.GetErrorButton().ShowsErrors(); }));
  EXPECT_EQ(mWindow.GetValue("Width"), "64");
}

TEST_F(RefreshModes, DeviceThatDoesNotAnswer_LeavesTheWindowAlive) {
  PortGate gate;
  Open(KrGenRefresh::Automatic);
  gate.CloseAt(mCamera.port, kHeightAddress);
  ASSERT_TRUE(gate.AwaitReached());

  Press(Qt::Key_F, Qt::ControlModifier);
  QTest::keyClicks(mWindow.GetWidget()->window()->focusWidget(), "?");
  mWindow.Click("Collapse");
  mWindow.GetWidget()->resize(600, 700);

  EXPECT_EQ(mWindow.GetResult(), "No result found");
  EXPECT_FALSE(mWindow.GetGrid().FindRow(mWindow.FindRow("Width")).isValid());
  EXPECT_EQ(mWindow.GetControl(1095)->geometry().right(), 600 - 1 - 6);
  gate.Open();
  // The thread leaves the gate before that ends.
  ASSERT_TRUE(mWindow.Close().IsOK());
}

TEST_F(RefreshModes, ClosingWhileAReadHangs_WaitsForThatReadAlone) {
  PortGate gate;
  Open(KrGenRefresh::Automatic);
  gate.CloseAt(mCamera.port, kHeightAddress);
  ASSERT_TRUE(gate.AwaitReached());
  const auto queue = mWindow.GetQueue();
  std::thread device([&] {
    EXPECT_TRUE(krtest::Await([&] { return !queue->IsOpen(); }));
    gate.Open();
  });

  EXPECT_TRUE(mWindow.Close().IsOK());
  mCamera.array.reset();
  device.join();

  EXPECT_EQ(mWindow.GetRows(), "closed");
}

TEST_F(RefreshModes, RebuildingAndChangingWithoutPause_IsSafeInEveryMode) {
  Open(KrGenRefresh::Automatic);
  std::atomic<bool> isOver = false;
  std::thread program([&] {
    for (std::int64_t value = 0; !isOver; value = (value + 1) % 100) {
      EXPECT_TRUE(mCamera.Integer("DigitalGainSelector").SetValue(value).IsOK());
      std::this_thread::yield();
    }
  });

  for (int round = 0; round < 200; ++round) {
    mWindow.SetRefreshMode(static_cast<KrGenRefresh>(round % 2));
    mWindow.GetVisibilityList().setCurrentIndex(round % 3);
    QCoreApplication::processEvents();
  }
  isOver = true;
  program.join();

  EXPECT_EQ(mWindow.GetRows(), kExpertRows) << "the last round's";
}

} // namespace krgui
