// How the parameters come into the browser of the camera bridge manager: read before on another thread, and taken out
// before the bridges end.

#include "camerawaitingfixture.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "temporaryfolder.h"

namespace krgui {

namespace {

class Reading : public WaitingTest {
protected:
  /// As an application does.
  void ConnectFirstBridge() {
    ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
    KrStringList ids;
    ASSERT_TRUE(GetBridge(0).GetGenCPXMLIDs(ids).IsOK());
    ASSERT_TRUE(GetBridge(0).ConnectGenCP(ids[0]).IsOK());
  }
  bool AwaitParameters() {
    return WaitFor([this] { return HasParameters(); });
  }
};

} // namespace

TEST_F(Reading, SlowCameraThatTheApplicationConnected_LeavesTheOpenedWindowAlive) {
  ConnectFirstBridge();
  bool isPainted = false;
  WhileItWaits([&](QWidget&) {
    isPainted = !mWindow->GetWidget()->grab().isNull();
    EXPECT_FALSE(HasParameters());
    mClock->SetStopped(false);
  });

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_EQ(mWaits, 0);
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
  EXPECT_TRUE(AwaitParameters());
  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(isPainted);
}

TEST_F(Reading, SlowCameraThatNobodyWantsToWaitFor_LeavesTheBrowserEmptyUntilItsPortIsChosenAgain) {
  ConnectFirstBridge();
  WhileItWaits([](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); });
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([this] { return mWaits == 1; }));
  AwaitAnswers();
  mClock->SetStopped(false);
  EXPECT_FALSE(HasParameters());
  EXPECT_TRUE(GetBridge(0).IsConnected());

  Pick(id::kDevicePort, "Serial0");

  EXPECT_TRUE(HasParameters());
}

TEST_F(Reading, ClosedWhileTheParametersAreRead_LeavesTheCameraConnected) {
  ConnectFirstBridge();
  WhileItWaits([this](QWidget&) { EXPECT_TRUE(mWindow->Close().IsOK()); });

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([this] { return mWaits == 1; }));

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_TRUE(GetBridge(0).IsConnected());
  mClock->SetStopped(false);
}

TEST_F(Reading, DeletedWhileTheParametersAreRead_Ends) {
  ConnectFirstBridge();
  WhileItWaits([this](QWidget&) { mWindow.reset(); });

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_TRUE(WaitFor([this] { return mWaits == 1; }));
  EXPECT_EQ(mWindow, nullptr);
}

TEST_F(Reading, ParametersOfAnotherKind_AreTakenOutBeforeTheCameraIsDisconnected) {
  Open();
  ConnectGenCP();
  ASSERT_TRUE(HasParameters());
  WhileItWaits([this](QWidget&) {
    EXPECT_FALSE(HasParameters());
    mClock->SetStopped(false);
  });

  Click(id::kNone);

  EXPECT_EQ(mWaits, 1);
}

TEST_F(Reading, ParametersOfAnotherDevice_AreTakenOutBeforeItsCamerasAreDisconnected) {
  Open();
  ConnectGenCP();
  ASSERT_TRUE(HasParameters());
  WhileItWaits([this](QWidget&) {
    EXPECT_FALSE(HasParameters());
    mClock->SetStopped(false);
  });

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_EQ(mWaits, 1);
}

TEST_F(Reading, ParametersOfABridgeThatIsLoadedAnew_AreTakenOutBeforeAndAreThereAfterwards) {
  Open();
  ConnectGenCP();
  const TemporaryFolder folder;
  const std::string file = folder.GetFile("bridges.xml");
  KrConfigurationWriter writer;
  KrConfigurationReader reader;
  ASSERT_TRUE(mWindow->Save(writer).IsOK());
  ASSERT_TRUE(writer.Save(file).IsOK());
  ASSERT_TRUE(reader.Load(file).IsOK());
  WhileItWaits([this](QWidget&) {
    EXPECT_FALSE(HasParameters());
    mClock->SetStopped(false);
  });
  KrStringList errors;

  EXPECT_TRUE(mWindow->Load(reader, errors).IsOK());

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(HasParameters());
}

TEST_F(Reading, PortThatIsShownAlready_ChangesNothingWhenItIsChosen) {
  Open();
  Click(id::kGenCP);
  ASSERT_FALSE(GetEntries(id::kGenCPXML).empty());

  Pick(id::kDevicePort, "Serial0");

  EXPECT_FALSE(GetEntries(id::kGenCPXML).empty());
  EXPECT_TRUE(IsEnabled(id::kGenCPConnect));
}

} // namespace krgui
